#include "Helper/linux/FileReplacement.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <ranges>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace vespra {

namespace fs = std::filesystem;

namespace {

    std::string fresh(const fs::path& path) { return path.filename().string() + ".new"; }
    std::string former(const fs::path& path) { return path.filename().string() + ".old"; }

    /// An error number; 0: gone, or never there.
    int unlinkIn(int directory, const std::string& name)
    {
        return unlinkat(directory, name.c_str(), 0) == 0 || errno == ENOENT ? 0 : errno;
    }

    HelperResult removeRemains(int directory, const fs::path& path)
    {
        for (const auto& name : {fresh(path), former(path)})
            if (const int error = unlinkIn(directory, name))
                return fileFailure("Cannot remove", path.parent_path() / name, error);
        return {};
    }

    bool writeAll(int descriptor, std::string_view content)
    {
        while (!content.empty()) {
            const auto written = write(descriptor, content.data(), content.size());
            if (written < 0 && errno != EINTR)
                return false;
            content.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
        return true;
    }

    /// A directory may hand its access list down to what is made in it.
    bool dropAccessList(int descriptor)
    {
        return fremovexattr(descriptor, "system.posix_acl_access") == 0 || errno == ENODATA || errno == ENOTSUP;
    }

    bool syncDirectory(int directory)
    {
        const FileDescriptor readable{openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
        return readable && fsync(readable.get()) == 0;
    }

} // namespace

std::expected<std::string, int> contentOf(int descriptor)
{
    std::string content;
    std::array<char, 65536> piece{};
    while (true) {
        const auto size = pread(descriptor, piece.data(), piece.size(), static_cast<off_t>(content.size()));
        if (size < 0 && errno != EINTR)
            return std::unexpected{errno};
        if (size == 0)
            return content;
        content.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
}

std::expected<bool, std::string> removeFile(int directory, const fs::path& path)
{
    const bool wasThere = unlinkat(directory, path.filename().c_str(), 0) == 0;
    if (!wasThere && errno != ENOENT)
        return fileFailure("Cannot remove", path, errno);
    if (const auto removed = removeRemains(directory, path); !removed)
        return std::unexpected{removed.error()};
    return wasThere;
}

HelperResult FileReplacement::prepare(const fs::path& path, std::string_view content, mode_t mode)
{
    auto directory = tree_.makeDirectory(path.parent_path(), made_);
    if (!directory)
        return std::unexpected{directory.error()};
    if (const auto removed = removeRemains(directory->get(), path); !removed)
        return removed;
    files_.push_back({std::move(*directory), path});
    // Closed to everybody until it has its content and its mode: who could open it before could write to it after.
    const FileDescriptor file{openat(files_.back().directory.get(),
        fresh(path).c_str(),
        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
        0600)};
    if (!file || !writeAll(file.get(), content) || !dropAccessList(file.get()) || fchmod(file.get(), mode) != 0
        || fsync(file.get()) != 0)
        return fileFailure("Cannot write", path, errno);
    return {};
}

HelperResult FileReplacement::replace(File& file)
{
    const int directory = file.directory.get();
    const auto name = file.path.filename();
    file.wasThere = linkat(directory, name.c_str(), directory, former(file.path).c_str(), 0) == 0;
    if ((!file.wasThere && errno != ENOENT)
        || renameat(directory, fresh(file.path).c_str(), directory, name.c_str()) != 0)
        return fileFailure("Cannot replace", file.path, errno);
    file.isReplaced = true;
    return syncDirectory(directory) ? HelperResult{} : fileFailure("Cannot keep", file.path, errno);
}

HelperResult FileReplacement::replace()
{
    for (auto& file : files_)
        if (const auto replaced = replace(file); !replaced)
            return replaced;
    return {};
}

HelperResult FileReplacement::takeBack(File& file)
{
    const int directory = file.directory.get();
    const auto name = file.path.filename();
    if (file.isReplaced) {
        const int result = file.wasThere ? renameat(directory, former(file.path).c_str(), directory, name.c_str())
                                         : unlinkat(directory, name.c_str(), 0);
        if (result != 0)
            return fileFailure("Cannot put back", file.path, errno);
        file.isReplaced = false;
    }
    return removeRemains(directory, file.path);
}

HelperResult FileReplacement::takeBack()
{
    HelperResult result;
    for (auto& file : files_ | std::views::reverse)
        if (const auto done = takeBack(file); !done && result)
            result = done;
    for (const auto& directory : made_ | std::views::reverse)
        if (rmdir(directory.c_str()) != 0 && errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST && result)
            result = fileFailure("Cannot remove", directory, errno);
    return result;
}

HelperResult FileReplacement::settle()
{
    for (const auto& file : files_)
        if (const auto removed = removeRemains(file.directory.get(), file.path); !removed)
            return removed;
    return {};
}

} // namespace vespra
