#include "Core/Files/SafeWriting.h"

#include <utility>

namespace vespra {

namespace fs = std::filesystem;

FileSystem::Result<fs::path> followingLinks(FileSystem& files, fs::path path)
{
    constexpr int longestChain = 40; // as the systems' own
    for (int links = 0; links <= longestChain; ++links) {
        const auto target = files.linkTarget(path);
        if (!target)
            return std::unexpected{target.error()};
        if (!*target)
            return path;
        path = path.parent_path() / **target; // an absolute target replaces the whole path
    }
    return std::unexpected{std::make_error_code(std::errc::too_many_symbolic_link_levels)};
}

FileSystem::Result<void> createDirectories(FileSystem& files, const fs::path& directory)
{
    if (!directory.has_relative_path() || files.isDirectory(directory))
        return {}; // the root is always there
    if (const auto parents = createDirectories(files, directory.parent_path()); !parents)
        return parents;
    const auto created = files.createDirectory(directory);
    // Another program may have made it in the meantime.
    if (!created && !files.isDirectory(directory))
        return created;
    return files.sync(directory.parent_path());
}

namespace {

    FileSystem::Result<void> filled(
        FileSystem& files, const fs::path& path, std::string_view bytes, const FileAttributes& attributes)
    {
        if (const auto written = files.write(path, bytes); !written)
            return written;
        if (const auto set = files.setAttributes(path, attributes); !set)
            return set;
        return files.sync(path);
    }

    /// An empty file beside `file` with a name of its own.
    FileSystem::Result<fs::path> createdBeside(FileSystem& files, const fs::path& file)
    {
        constexpr int mostTries = 100; // names may be taken by what a crash left
        FileSystem::Result<void> created;
        for (int number = 1; number <= mostTries; ++number) {
            const auto path
                = file.parent_path() / ("." + file.filename().string() + ".vespra-" + std::to_string(number));
            created = files.createFile(path);
            if (created)
                return path;
            if (created.error() != std::errc::file_exists)
                break;
        }
        return std::unexpected{created.error()};
    }

} // namespace

PreparedFile::PreparedFile(FileSystem& files, fs::path file, fs::path temporary)
    : files_{&files}
    , file_{std::move(file)}
    , temporary_{std::move(temporary)}
{
}

PreparedFile::PreparedFile(PreparedFile&& other) noexcept
    : files_{other.files_}
    , file_{std::move(other.file_)}
    , temporary_{std::exchange(other.temporary_, {})}
{
}

PreparedFile::~PreparedFile()
{
    if (!temporary_.empty())
        static_cast<void>(files_->remove(temporary_)); // nothing more can be done about it
}

FileSystem::Result<PreparedFile> PreparedFile::beside(
    FileSystem& files, const fs::path& file, std::string_view bytes, const FileAttributes& attributes)
{
    auto temporary = createdBeside(files, file);
    if (!temporary)
        return std::unexpected{temporary.error()};
    PreparedFile prepared{files, file, *std::move(temporary)};
    if (const auto done = filled(files, prepared.temporary_, bytes, attributes); !done)
        return std::unexpected{done.error()};
    return prepared;
}

FileSystem::Result<void> PreparedFile::takePlace() { return moveTo(file_); }

FileSystem::Result<void> PreparedFile::takePlaceAt(const fs::path& place)
{
    // Claims the name first: renaming alone would replace what stands there.
    if (const auto claimed = files_->createFile(place); !claimed)
        return claimed;
    const auto moved = moveTo(place);
    if (!moved && !temporary_.empty())
        static_cast<void>(files_->remove(place));
    return moved;
}

FileSystem::Result<void> PreparedFile::moveTo(const fs::path& place)
{
    if (const auto renamed = files_->rename(temporary_, place); !renamed)
        return renamed;
    temporary_.clear();
    return files_->sync(place.parent_path());
}

FileSystem::Result<void> writeSafely(
    FileSystem& files, const fs::path& file, std::string_view bytes, const FileAttributes& attributes)
{
    auto prepared = PreparedFile::beside(files, file, bytes, attributes);
    if (!prepared)
        return std::unexpected{prepared.error()};
    return prepared->takePlace();
}

} // namespace vespra
