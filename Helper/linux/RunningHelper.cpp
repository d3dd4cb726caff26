#include "Helper/linux/RunningHelper.h"

#include "Helper/linux/SystemBus.h"
#include "HelperProtocol/linux/InstallationNames.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <thread>
#include <unistd.h>

namespace vespra {

namespace {

    using namespace std::chrono_literals;

    constexpr auto look = 20ms;
    constexpr int looksBeforeKill = 250;
    constexpr int lookLimit = 500;

    HelperResult call(sd_bus& bus, const char* service, const char* path, const char* interface, const char* method)
    {
        BusError error;
        const int result = sd_bus_call_method(&bus, service, path, interface, method, &error.error, nullptr, "");
        if (result < 0)
            return std::unexpected{std::string{method} + ": " + error.description(result)};
        return {};
    }

    HelperResult readAgain(sd_bus& bus)
    {
        const auto configured
            = call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig");
        if (!configured || access("/run/systemd/system", F_OK) != 0)
            return configured;
        return call(
            bus, "org.freedesktop.systemd1", "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager", "Reload");
    }

    /// The process that has the helper's name, if it runs the installed program: not a package's.
    std::optional<pid_t> installedHelper(sd_bus& bus)
    {
        sd_bus_creds* found = nullptr;
        const int result = sd_bus_get_name_creds(&bus, installation::busName, SD_BUS_CREDS_PID, &found);
        const std::unique_ptr<sd_bus_creds, Unref<sd_bus_creds_unref>> owner{found};
        pid_t process = 0;
        if (result < 0 || sd_bus_creds_get_pid(found, &process) < 0)
            return {};
        std::error_code gone;
        // One that has been replaced meanwhile is marked as deleted at the end.
        const auto program = std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", gone);
        return program.string().starts_with(installation::localProgram) ? std::optional{process} : std::nullopt;
    }

    HelperResult endHelper(sd_bus& bus)
    {
        for (int looks = 0; looks < lookLimit; ++looks) {
            const auto process = installedHelper(bus);
            if (!process)
                return {};
            if (looks == 0 || looks == looksBeforeKill)
                kill(*process, looks == 0 ? SIGTERM : SIGKILL);
            std::this_thread::sleep_for(look);
        }
        return std::unexpected{"The helper that runs does not end."};
    }

} // namespace

HelperResult restartServices()
{
    sd_bus* connected = nullptr;
    const int opened = sd_bus_open_system(&connected);
    const Bus bus{connected};
    if (opened < 0)
        return std::unexpected{"The system bus does not answer: " + systemError(opened)};
    if (const auto read = readAgain(*bus); !read)
        return read;
    return endHelper(*bus);
}

} // namespace vespra
