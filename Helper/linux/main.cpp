#include "Core/ClosedLid/ClosedLidLease.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Helper/linux/HelperProgram.h"
#include "Helper/linux/SelfInstaller.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace vespra;

constexpr int badInput = 2;

constexpr auto usage = R"(Usage: vespra-helper [--install | --uninstall | --help]
Without an option: serves the system bus, as which the bus starts it.
  --install    Make this program a service of the system, where no package has done so; as root.
  --uninstall  Take that back.
)";

int fail(const std::string& message)
{
    std::fprintf(stderr, "vespra-helper: %s\n", message.c_str());
    return EXIT_FAILURE;
}

int changeInstallation(bool installs)
{
    if (geteuid() != 0)
        return fail("only root can change the system's services; try: pkexec vespra-helper --install");
    // What the service manager keeps running, and what others may read, must not follow from who called.
    umask(022);
    const SelfInstaller installer{"/"};
    const auto changed = installs ? installer.install("/proc/self/exe") : installer.uninstall();
    if (!changed)
        return fail(changed.error());
    if (const auto reloaded = reloadSystem(); !reloaded)
        return fail("The files are in place, but take effect only after a restart. " + reloaded.error());
    return EXIT_SUCCESS;
}

std::string stateDirectory()
{
    // systemd makes it and says which it is.
    const char* given = std::getenv("STATE_DIRECTORY");
    return given && *given == '/' ? given : "/var/lib/vespra-helper";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 1)
        return runHelper({.stateDirectory = stateDirectory(),
            .leaseTimeout = ClosedLidLease<ContinuousInstant>::defaultTimeout,
            .idleTimeout = 60s});
    const std::string_view option = argv[1];
    if (argc == 2 && (option == "--install" || option == "--uninstall"))
        return changeInstallation(option == "--install");
    const bool asksForHelp = argc == 2 && option == "--help";
    std::fputs(usage, asksForHelp ? stdout : stderr);
    return asksForHelp ? EXIT_SUCCESS : badInput;
}
