#pragma once

#include "Core/Files/FileSystem.h"

namespace vespra {

/// Follows `path` through symbolic links, also dangling ones, to the file they stand for. Fails where they lead in a
/// circle.
FileSystem::Result<std::filesystem::path> followingLinks(FileSystem& files, std::filesystem::path path);

/// Creates what is missing of `directory`, for the user only.
FileSystem::Result<void> createDirectories(FileSystem& files, const std::filesystem::path& directory);

/// A file's new contents, on the disk beside the file and not yet in its place. Removed on destruction unless they have
/// taken that place.
class PreparedFile {
public:
    static FileSystem::Result<PreparedFile> beside(
        FileSystem& files, const std::filesystem::path& file, std::string_view bytes, const FileAttributes& attributes);
    PreparedFile(PreparedFile&& other) noexcept;
    PreparedFile& operator=(PreparedFile&&) = delete;
    ~PreparedFile();

    /// Replaces the file, if there is one.
    FileSystem::Result<void> takePlace();
    /// Fails with `file_exists` if something stands at `place`, which is in the same directory.
    FileSystem::Result<void> takePlaceAt(const std::filesystem::path& place);

private:
    PreparedFile(FileSystem& files, std::filesystem::path file, std::filesystem::path temporary);
    FileSystem::Result<void> moveTo(const std::filesystem::path& place);

    FileSystem* files_;
    std::filesystem::path file_;
    std::filesystem::path temporary_; // empty once it has taken its place
};

/// Creates or replaces `file` in one step.
FileSystem::Result<void> writeSafely(
    FileSystem& files, const std::filesystem::path& file, std::string_view bytes, const FileAttributes& attributes);

} // namespace vespra
