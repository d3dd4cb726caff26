#include "Helper/linux/SelfInstaller.h"

#include "Helper/linux/InstalledFiles.h"
#include "Helper/linux/SystemBus.h"
#include "HelperProtocol/linux/InstallationNames.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <ranges>
#include <sys/stat.h>
#include <unistd.h>

namespace vespra {

namespace fs = std::filesystem;

namespace {

    std::unexpected<std::string> failure(const std::string& what, const fs::path& path, int error)
    {
        return std::unexpected{what + " " + path.string() + ": " + std::strerror(error)};
    }

    /// Makes `bytes` the file at `path`, whole or not at all.
    HelperResult writeFile(const fs::path& path, std::istream& bytes, mode_t mode)
    {
        auto temporary = path;
        temporary += ".new";
        ::unlink(temporary.c_str());
        {
            std::ofstream file{temporary, std::ios::binary};
            file << bytes.rdbuf();
            file.flush();
            if (!file)
                return failure("Cannot write", temporary, errno);
        }
        const int descriptor = ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        const bool isOnDisk = descriptor >= 0 && ::fchmod(descriptor, mode) == 0 && ::fsync(descriptor) == 0;
        const int error = errno;
        if (descriptor >= 0)
            ::close(descriptor);
        if (isOnDisk && ::rename(temporary.c_str(), path.c_str()) == 0)
            return {};
        ::unlink(temporary.c_str());
        return failure("Cannot write", path, isOnDisk ? errno : error);
    }

} // namespace

SelfInstaller::SelfInstaller(fs::path root)
    : root_{std::move(root)}
    , program_{below(installation::localProgram)}
{
    const std::string name = installation::busName;
    // The activation comes last: what it starts is all there by then.
    files_ = {
        {below("/usr/share/polkit-1/actions/" + name + ".policy"), installation::polkitPolicy},
        {below("/etc/dbus-1/system.d/" + name + ".conf"), installation::busPolicy},
        {below("/etc/systemd/system/vespra-helper.service"), installation::unit},
        {below("/usr/local/share/dbus-1/system-services/" + name + ".service"), installation::activation},
    };
}

/// Makes `directory` where it is missing. Who may write to it, or to what it is in, could put another program in the
/// place of the one that root runs.
HelperResult SelfInstaller::checkDirectory(const fs::path& directory) const
{
    auto path = root_;
    for (const auto& part : directory.lexically_relative(root_)) {
        path /= part;
        if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST)
            return failure("Cannot make", path, errno);
        struct stat status{};
        if (::stat(path.c_str(), &status) != 0)
            return failure("Cannot read", path, errno);
        if (!S_ISDIR(status.st_mode))
            return failure("Cannot use", path, ENOTDIR);
        if (status.st_uid != ::geteuid() || (status.st_mode & S_IWOTH)
            || ((status.st_mode & S_IWGRP) && status.st_gid != ::getegid()))
            return std::unexpected{path.string() + " can be changed by others than root; nothing was installed."};
    }
    return {};
}

HelperResult SelfInstaller::install(const fs::path& program) const
{
    std::error_code ignored;
    const auto packaged = below("/usr/share/dbus-1/system-services/" + std::string{installation::busName} + ".service");
    if (fs::exists(packaged, ignored))
        return std::unexpected{"A package has installed the helper already (" + packaged.string() + ")."};
    if (const auto checked = checkDirectory(program_.parent_path()); !checked)
        return checked;
    for (const auto& file : files_)
        if (const auto checked = checkDirectory(file.path.parent_path()); !checked)
            return checked;
    const auto written = writeAll(program);
    if (!written)
        (void)uninstall();
    return written;
}

HelperResult SelfInstaller::writeAll(const fs::path& program) const
{
    std::ifstream executable{program, std::ios::binary};
    if (!executable)
        return failure("Cannot read", program, errno);
    if (const auto written = writeFile(program_, executable, 0755); !written)
        return written;
    for (const auto& file : files_) {
        std::istringstream content{file.content};
        if (const auto written = writeFile(file.path, content, 0644); !written)
            return written;
    }
    return {};
}

HelperResult SelfInstaller::uninstall() const
{
    HelperResult result;
    const auto remove = [&](const fs::path& path) {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR && result)
            result = failure("Cannot remove", path, errno);
    };
    for (const auto& file : files_ | std::views::reverse)
        remove(file.path);
    remove(program_);
    return result;
}

HelperResult reloadSystem()
{
    sd_bus* connected = nullptr;
    const int opened = sd_bus_open_system(&connected);
    const Bus bus{connected};
    if (opened < 0)
        return std::unexpected{"The system bus does not answer: " + systemError(opened)};
    const auto call
        = [&](const char* service, const char* path, const char* interface, const char* method, const char* argument) {
              BusError error;
              const int result = argument
                  ? sd_bus_call_method(
                        connected, service, path, interface, method, &error.error, nullptr, "ss", argument, "replace")
                  : sd_bus_call_method(connected, service, path, interface, method, &error.error, nullptr, "");
              return result < 0 ? HelperResult{std::unexpected{std::string{method} + ": " + error.description(result)}}
                                : HelperResult{};
          };
    constexpr auto systemd = "org.freedesktop.systemd1", manager = "org.freedesktop.systemd1.Manager";
    if (::access("/run/systemd/system", F_OK) == 0) {
        // One that is not running cannot be stopped, and needs not be.
        (void)call(systemd, "/org/freedesktop/systemd1", manager, "StopUnit", "vespra-helper.service");
        if (const auto reloaded = call(systemd, "/org/freedesktop/systemd1", manager, "Reload", nullptr); !reloaded)
            return reloaded;
    }
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig", nullptr);
}

} // namespace vespra
