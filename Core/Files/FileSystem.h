#pragma once

// Core/Files: files that are replaced whole, so that a crash leaves the old content or the new.

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace vespra {

/// Who may use a file.
struct FileAttributes {
    std::uint32_t mode = 0600; // the permission bits
    /// Absent: the user who runs the program, and the group that the system gives.
    struct Owner {
        std::uint32_t user = 0;
        std::uint32_t group = 0;
        bool operator==(const Owner&) const = default;
    };
    std::optional<Owner> owner;
    bool operator==(const FileAttributes&) const = default;
};

/// A regular file, read whole.
struct FileContents {
    std::string bytes;
    FileAttributes attributes;
    bool operator==(const FileContents&) const = default;
};

/// The few operations with which files are replaced safely, each one step that can fail, or be the last before a crash.
/// Any thread.
class FileSystem {
public:
    template <class Value> using Result = std::expected<Value, std::error_code>;

    virtual ~FileSystem() = default;

    /// Follows links.
    virtual bool isDirectory(const std::filesystem::path& path) = 0;
    /// The target of a symbolic link, exactly as it is stored; absent if `path` is not a link or does not exist.
    virtual Result<std::optional<std::filesystem::path>> linkTarget(const std::filesystem::path& path) = 0;
    /// Absent if there is no such file; fails for anything but a regular file. Follows links.
    virtual Result<std::optional<FileContents>> read(const std::filesystem::path& path) = 0;
    /// One new directory, mode 0700. Fails with `file_exists` if something stands there.
    virtual Result<void> createDirectory(const std::filesystem::path& path) = 0;
    /// A new file, empty, for the user only. Fails with `file_exists` if something stands there, even a dangling link.
    virtual Result<void> createFile(const std::filesystem::path& path) = 0;
    /// Writes the bytes to a file that exists. If it fails, some of them may be there.
    virtual Result<void> write(const std::filesystem::path& path, std::string_view bytes) = 0;
    /// Fails if the owner cannot be set; a group that this user may not assign is left as it is.
    virtual Result<void> setAttributes(const std::filesystem::path& path, const FileAttributes& attributes) = 0;
    /// Returns when the contents are on the disk; for a directory, which files stand in it.
    virtual Result<void> sync(const std::filesystem::path& path) = 0;
    /// Atomically replaces what is at `to`.
    virtual Result<void> rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual Result<void> remove(const std::filesystem::path& path) = 0;
};

/// This computer's files.
FileSystem& systemFiles();

} // namespace vespra
