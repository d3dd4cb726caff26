#pragma once

#include "Core/Files/FileSystem.h"

#include <functional>
#include <limits>
#include <set>

namespace vespra {

/// This computer's files, of which one step fails, or before one of which the computer loses power: no further step
/// does anything then, and of what was never synced half is lost.
class FaultyFiles final : public FileSystem {
public:
    enum class Fault { failure, powerLoss };

    FaultyFiles() = default;
    FaultyFiles(Fault fault, int step)
        : fault_{fault}
        , faultyStep_{step}
    {
    }

    /// Whether the step has been reached.
    bool isHit() const { return steps_ > faultyStep_; }
    /// Whether some file's contents may not have reached the disk.
    bool hasUnsynced() const { return !unsynced_.empty(); }
    /// Called after each file has been synced.
    std::function<void()> afterSync;

    bool isDirectory(const std::filesystem::path& path) override { return !fails() && files_.isDirectory(path); }
    Result<std::optional<std::filesystem::path>> linkTarget(const std::filesystem::path& path) override
    {
        return fails() ? error() : files_.linkTarget(path);
    }
    Result<std::optional<FileContents>> read(const std::filesystem::path& path) override
    {
        return fails() ? error() : files_.read(path);
    }
    Result<void> createDirectory(const std::filesystem::path& path) override
    {
        return fails() ? error() : files_.createDirectory(path);
    }
    Result<void> createFile(const std::filesystem::path& path) override
    {
        return fails() ? error() : files_.createFile(path);
    }
    Result<void> write(const std::filesystem::path& path, std::string_view bytes) override
    {
        if (!fails()) {
            unsynced_.insert(path);
            return files_.write(path, bytes);
        }
        // A full disk takes some of the bytes.
        if (fault_ == Fault::failure)
            static_cast<void>(files_.write(path, bytes.substr(0, bytes.size() / 2)));
        return error();
    }
    Result<void> setAttributes(const std::filesystem::path& path, const FileAttributes& attributes) override
    {
        return fails() ? error() : files_.setAttributes(path, attributes);
    }
    Result<void> sync(const std::filesystem::path& path) override
    {
        if (fails())
            return error();
        unsynced_.erase(path);
        if (afterSync)
            afterSync();
        return {};
    }
    Result<void> rename(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        if (fails())
            return error();
        if (unsynced_.erase(from))
            unsynced_.insert(to);
        return files_.rename(from, to);
    }
    Result<void> remove(const std::filesystem::path& path) override { return fails() ? error() : files_.remove(path); }

private:
    static std::unexpected<std::error_code> error()
    {
        return std::unexpected{std::make_error_code(std::errc::io_error)};
    }

    bool fails()
    {
        const auto step = steps_++;
        if (step == faultyStep_ && fault_ == Fault::powerLoss)
            for (const auto& path : unsynced_)
                std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
        return fault_ == Fault::powerLoss ? step >= faultyStep_ : step == faultyStep_;
    }

    FileSystem& files_ = systemFiles();
    Fault fault_ = Fault::failure;
    int faultyStep_ = std::numeric_limits<int>::max();
    int steps_ = 0;
    std::set<std::filesystem::path> unsynced_;
};

} // namespace vespra
