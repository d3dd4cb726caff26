#include "Control/Command.h"
#include "HelperProtocol/AutoreleasePool.h"
#include "HelperProtocol/Process.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

/// What is wrong; a subcommand that there is not by its name.
std::string complaint(const CLI::App* vespractl, const CLI::Error& error)
{
    const auto unknown = vespractl->remaining(true);
    if (error.get_name() != "RequiredError" || unknown.empty())
        return CLI::FailureMessage::simple(vespractl, error);
    return "There is no \"" + unknown.front() + "\" here.\nRun with --help for more information.\n";
}

using namespace vespra::control;

/// Does what the arguments say and returns the exit status.
int control(int argc, char** argv)
{
    const auto command = takeCommand(argc, argv);
    CLI::App vespractl{"Controls Vespra from a terminal or a script."};
    vespractl.require_subcommand(1);
    vespractl.failure_message(complaint);
    int exitStatus = done;
    addStatusCommand(vespractl, exitStatus);
    addSessionCommands(vespractl, exitStatus);
    addRunCommands(vespractl, exitStatus, command);
    addSettingsCommand(vespractl, exitStatus);
    addDoctorCommand(vespractl, exitStatus);
    addMachineCommand(vespractl, exitStatus);
    addHooksCommand(vespractl, exitStatus);
    addSimulateCommand(vespractl, exitStatus);
    try {
        vespractl.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help is a "parse error" of status 0.
        if (vespractl.exit(error) == 0)
            return done;
        return vespractl.got_subcommand("run") ? runFailed : badInput;
    }
    return exitStatus;
}

} // namespace

int main(int argc, char** argv)
{
    vespra::process::openStandardDescriptors();
    const int exitStatus = vespra::inAutoreleasePool([&] { return control(argc, argv); });
    if (vespra::process::isOutputWritten())
        return exitStatus;
    const char* const reason = errno == 0 ? "not all of it was written" : std::strerror(errno);
    std::fprintf(stderr, "vespractl: cannot write to standard output: %s\n", reason);
    return exitStatus == done ? failed : exitStatus;
}
