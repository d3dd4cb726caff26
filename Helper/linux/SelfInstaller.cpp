#include "Helper/linux/SelfInstaller.h"

#include "Helper/linux/FileReplacement.h"
#include "Helper/linux/InstalledFiles.h"
#include "HelperProtocol/linux/InstallationNames.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <ranges>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>

namespace vespra {

namespace fs = std::filesystem;

namespace {

    constexpr auto isBusy = "Another installation is under way.";

    Trust sourceTrust(const InstallationUsers& users)
    {
        Trust trust{.owners = {0, users.owner}, .privateGroup = users.callersGroup, .acceptsStickyDirectories = true};
        if (users.caller)
            trust.owners.push_back(*users.caller);
        return trust;
    }

    bool isSameFile(int one, int other)
    {
        struct stat first{}, second{};
        return fstat(one, &first) == 0 && fstat(other, &second) == 0 && first.st_dev == second.st_dev
            && first.st_ino == second.st_ino;
    }

    std::vector<std::string> lines(const std::string& text)
    {
        std::vector<std::string> result;
        std::istringstream stream{text};
        for (std::string line; std::getline(stream, line);)
            result.push_back(line);
        return result;
    }

} // namespace

SelfInstaller::SelfInstaller(fs::path root, InstallationUsers users)
    : system_{std::move(root), {.owners = {users.owner}}}
    , source_{"/", sourceTrust(users)}
{
}

fs::path SelfInstaller::below(const fs::path& path) const { return system_.root() / path.relative_path(); }

bool SelfInstaller::hasPackage() const
{
    std::error_code unreadable;
    return fs::exists(below(installation::packagedActivation), unreadable) || unreadable;
}

/// None where another installation is under way.
FileDescriptor SelfInstaller::lock() const
{
    FileDescriptor root{open(system_.root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    return root && flock(root.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(root) : FileDescriptor{};
}

/// In the order in which they are put in place: what the activation starts is all there by then.
std::vector<SelfInstaller::File> SelfInstaller::files(std::string program) const
{
    return {
        {installation::localProgram, std::move(program), 0755},
        {installation::polkitPolicyPath, installation::polkitPolicy, 0644},
        {installation::busPolicyPath, installation::busPolicy, 0644},
        {installation::unitPath, installation::unit, 0644},
        {installation::activationPath, installation::activation, 0644},
    };
}

/// Checks that the program's path still leads to the file that is open: nobody has put another in its place.
HelperResult SelfInstaller::checkProgram(int program) const
{
    std::error_code error;
    const auto path = fs::read_symlink("/proc/self/fd/" + std::to_string(program), error);
    if (error)
        return fileFailure("Cannot find", "the program", error.value());
    const auto directory = source_.directory(path.parent_path());
    if (!directory)
        return std::unexpected{directory.error()};
    const FileDescriptor named{
        *directory ? openat(directory->get(), path.filename().c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC) : -1};
    if (!named || !isSameFile(program, named.get()))
        return std::unexpected{path.string() + " has been replaced meanwhile."};
    return source_.check(program, path);
}

std::expected<std::string, std::string> SelfInstaller::readProgram(const fs::path& program) const
{
    const FileDescriptor file{open(program.c_str(), O_RDONLY | O_CLOEXEC)};
    if (!file)
        return fileFailure("Cannot read", program, errno);
    if (const auto checked = checkProgram(file.get()); !checked)
        return std::unexpected{checked.error()};
    auto content = contentOf(file.get());
    if (!content)
        return fileFailure("Cannot read", program, content.error());
    if (contentOf(file.get()) != content)
        return std::unexpected{program.string() + " is being changed."};
    return std::move(*content);
}

HelperResult SelfInstaller::install(const fs::path& program) const
{
    if (hasPackage())
        return std::unexpected{
            "A package has installed the helper (" + below(installation::packagedActivation).string() + ")."};
    const auto held = lock();
    if (!held)
        return std::unexpected{isBusy};
    auto content = readProgram(program);
    if (!content)
        return std::unexpected{content.error()};
    return replace(files(std::move(*content)));
}

HelperResult SelfInstaller::replace(std::vector<File> files) const
{
    FileReplacement replacement{system_};
    const auto run = [&]() -> HelperResult {
        for (const auto& file : files)
            if (const auto prepared = replacement.prepare(file.path, file.content, file.mode); !prepared)
                return prepared;
        auto directories = listedDirectories();
        if (!directories)
            return std::unexpected{directories.error()};
        for (const auto& directory : replacement.madeDirectories())
            *directories += directory.string() + '\n';
        const auto& list = files.emplace_back(installation::directoryListPath, std::move(*directories), 0644);
        if (const auto listed = replacement.prepare(list.path, list.content, list.mode); !listed)
            return listed;
        if (const auto replaced = replacement.replace(); !replaced)
            return replaced;
        return verify(files);
    };
    auto result = run();
    if (result)
        return replacement.settle();
    if (const auto takenBack = replacement.takeBack(); !takenBack)
        result.error() += " " + takenBack.error();
    return result;
}

HelperResult SelfInstaller::verify(const fs::path& program) const
{
    if (hasPackage())
        return {};
    const FileDescriptor file{open(program.c_str(), O_RDONLY | O_CLOEXEC)};
    auto content = file ? contentOf(file.get()) : std::unexpected{errno};
    if (!content)
        return fileFailure("Cannot read", program, content.error());
    return verify(files(std::move(*content)));
}

HelperResult SelfInstaller::verify(const std::vector<File>& files) const
{
    for (const auto& file : files)
        if (const auto verified = verify(file); !verified)
            return verified;
    return {};
}

HelperResult SelfInstaller::verify(const File& file) const
{
    const auto path = below(file.path);
    const auto directory = system_.directory(file.path.parent_path());
    if (!directory)
        return std::unexpected{directory.error()};
    const FileDescriptor opened{
        *directory ? openat(directory->get(), path.filename().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC) : -1};
    struct stat status{};
    if (!opened || fstat(opened.get(), &status) != 0)
        return std::unexpected{path.string() + " is not there."};
    if (const auto checked = system_.check(opened.get(), path); !checked)
        return checked;
    if ((status.st_mode & 07777) != file.mode || contentOf(opened.get()) != file.content)
        return std::unexpected{path.string() + " is not this program's."};
    return {};
}

/// One a line, outermost first; empty where there is no list.
std::expected<std::string, std::string> SelfInstaller::listedDirectories() const
{
    const fs::path path{installation::directoryListPath};
    const auto directory = system_.directory(path.parent_path());
    if (!directory)
        return std::unexpected{directory.error()};
    const FileDescriptor list{
        *directory ? openat(directory->get(), path.filename().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC) : -1};
    if (!list)
        return {};
    auto content = contentOf(list.get());
    if (!content)
        return fileFailure("Cannot read", below(path), content.error());
    return std::move(*content);
}

void SelfInstaller::remove(const fs::path& path, Removal& removal) const
{
    const auto directory = system_.directory(path.parent_path());
    if (!directory)
        return removal.failures.push_back(directory.error());
    if (!*directory)
        return;
    const auto removed = removeFile(directory->get(), below(path));
    if (!removed)
        removal.failures.push_back(removed.error());
    else if (*removed)
        removal.removed.push_back(below(path));
}

SelfInstaller::Removal SelfInstaller::uninstall() const
{
    const auto held = lock();
    if (!held)
        return {.removed = {}, .failures = {isBusy}};
    Removal removal;
    const auto directories = listedDirectories();
    for (const auto& file : files({}) | std::views::reverse)
        remove(file.path, removal);
    if (!removal.failures.empty())
        return removal;
    remove(installation::directoryListPath, removal);
    for (const auto& directory : lines(directories.value_or("")) | std::views::reverse)
        if (rmdir(directory.c_str()) == 0)
            removal.removed.emplace_back(directory);
        else if (errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST)
            removal.failures.push_back(fileFailure("Cannot remove", directory, errno).error());
    return removal;
}

SelfInstaller::Removal SelfInstaller::removeState() const
{
    const auto path = below(installation::stateDirectory);
    std::error_code error;
    if (hasPackage() || fs::remove_all(path, error) == 0)
        return {};
    if (error)
        return {.removed = {}, .failures = {fileFailure("Cannot remove", path, error.value()).error()}};
    return {.removed = {path}, .failures = {}};
}

} // namespace vespra
