#include "Core/ClosedLid/ClosedLidLease.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Helper/linux/HelperProgram.h"
#include "Helper/linux/InstalledFiles.h"
#include "Helper/linux/RunningHelper.h"
#include "Helper/linux/SelfInstaller.h"
#include "HelperProtocol/linux/InstallationNames.h"
#include "HelperProtocol/Process.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace vespra;

constexpr int badInput = 2;

constexpr auto usage = R"(Usage: vespra-helper [--install | --uninstall | --verify | --help]
Without an option: serves the system bus, as which the bus starts it.
  --install    Make this program a service of the system, where no package has done so; as root.
  --uninstall  Take that back.
  --verify     Say whether that is done, with this very program or by a package: status 0, or 1 and why not.
)";

/// The running program, whatever has become of its name since.
constexpr auto ownProgram = "/proc/self/exe";

int fail(const std::string& message)
{
    std::fprintf(stderr, "vespra-helper: %s\n", message.c_str());
    return EXIT_FAILURE;
}

/// Who has become root with pkexec or sudo to call this.
InstallationUsers users()
{
    InstallationUsers users;
    for (const auto* variable : {"PKEXEC_UID", "SUDO_UID"})
        if (const char* text = std::getenv(variable)) {
            const std::string_view digits{text};
            uid_t caller = 0;
            if (std::from_chars(digits.begin(), digits.end(), caller).ptr == digits.end() && !digits.empty())
                users.caller = caller;
        }
    const passwd* user = users.caller ? getpwuid(*users.caller) : nullptr;
    if (!user)
        return users;
    const std::string name = user->pw_name;
    // A group with the user's name and nobody else in it. Systems that give each user one let it write to the user's
    // files.
    const ::group* group = getgrgid(user->pw_gid);
    if (group && name == group->gr_name && (!*group->gr_mem || (name == *group->gr_mem && !group->gr_mem[1])))
        users.callersGroup = group->gr_gid;
    return users;
}

/// Drops what is inherited from the caller, so that nothing of it can stop this halfway or get into the files.
void becomeIndependent()
{
    int descriptor = 0;
    do
        descriptor = open("/dev/null", O_RDWR | O_CLOEXEC);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
    umask(022);
}

int failToRestart(const char* done, const std::string& error)
{
    return fail(std::string{"the files are "} + done
        + ", but what runs stays as it is until the computer starts again: " + error);
}

int install()
{
    if (const auto installed = SelfInstaller{"/", users()}.install(ownProgram); !installed)
        return fail("installation failed. " + installed.error());
    if (const auto restarted = restartServices(); !restarted)
        return failToRestart("installed", restarted.error());
    std::printf("Installed %s.\n", installation::localProgram);
    return EXIT_SUCCESS;
}

int report(const SelfInstaller::Removal& removal)
{
    for (const auto& path : removal.removed)
        std::printf("Removed %s.\n", path.c_str());
    for (const auto& failure : removal.failures)
        fail(failure);
    return removal.failures.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

int uninstall()
{
    const SelfInstaller installer{"/", users()};
    const auto files = installer.uninstall();
    int status = report(files);
    if (!files.removed.empty())
        if (const auto restarted = restartServices(); !restarted)
            status = failToRestart("removed", restarted.error());
    const auto state = files.failures.empty() ? installer.removeState() : SelfInstaller::Removal{};
    status = std::max(status, report(state));
    if (installer.hasPackage())
        return files.removed.empty() ? fail("a package has installed the helper, and removes it.") : status;
    if (status == EXIT_SUCCESS && files.removed.empty() && state.removed.empty())
        std::puts("Nothing of it was installed.");
    return status;
}

int verify()
{
    const auto verified = SelfInstaller{"/"}.verify(ownProgram);
    return verified ? EXIT_SUCCESS : fail(verified.error());
}

int changeInstallation(int (*change)(), const std::string& option)
{
    if (geteuid() != 0)
        return fail("only root can change the system's services; try: pkexec vespra-helper " + option);
    becomeIndependent();
    const int status = change();
    return std::fflush(stdout) == 0 ? status : fail(std::string{"standard output: "} + std::strerror(errno));
}

std::string stateDirectory()
{
    // systemd makes it and says which it is.
    const char* given = std::getenv("STATE_DIRECTORY");
    return given && *given == '/' ? given : installation::stateDirectory;
}

} // namespace

int main(int argc, char** argv)
{
    process::openStandardDescriptors();
    if (argc == 1)
        return runHelper({.stateDirectory = stateDirectory(),
            .leaseTimeout = ClosedLidLease<ContinuousInstant>::defaultTimeout,
            .idleTimeout = 60s});
    const std::string option = argv[1];
    if (argc == 2 && option == "--install")
        return changeInstallation(install, option);
    if (argc == 2 && option == "--uninstall")
        return changeInstallation(uninstall, option);
    if (argc == 2 && option == "--verify")
        return verify();
    const bool asksForHelp = argc == 2 && option == "--help";
    std::fputs(usage, asksForHelp ? stdout : stderr);
    if (!process::isOutputWritten())
        return fail("cannot write to standard output");
    return asksForHelp ? EXIT_SUCCESS : badInput;
}
