#include "Control/Command.h"
#include "HelperProtocol/Process.h"
#include "Host/Host.h"

#include <cerrno>
#include <cstring>

using namespace vespra;
using namespace vespra::control;

namespace {

/// Does what the arguments say and returns the exit status.
int runVerb(int argc, char** argv)
{
    const auto command = takeCommand(argc, argv);
    CLI::App vespractl{"Controls Vespra from a terminal or a script.", programName};
    commandLine::prepare(vespractl);
    vespractl.require_subcommand(1);
    int exitStatus = done;
    addStatusCommand(vespractl, exitStatus);
    addSessionCommands(vespractl, exitStatus);
    addRunCommands(vespractl, exitStatus, command);
    addSettingsCommand(vespractl, exitStatus);
    addDoctorCommand(vespractl, exitStatus);
    addMachineCommand(vespractl, exitStatus);
    addHooksCommand(vespractl, exitStatus);
    addSimulateCommand(vespractl, exitStatus);
    const auto parseStatus = commandLine::parse(vespractl, argc, argv);
    // A wrong option of `run` must not look like a status of the command that was to run.
    if (parseStatus && *parseStatus != done && vespractl.got_subcommand("run"))
        return runFailed;
    return parseStatus.value_or(exitStatus);
}

} // namespace

int main(int argc, char** argv)
{
    process::openStandardDescriptors();
    const int exitStatus = inAutoreleasePool([&] { return runVerb(argc, argv); });
    if (process::isOutputWritten())
        return exitStatus;
    const char* const reason = errno == 0 ? "not all of it was written" : std::strerror(errno);
    commandLine::complain(programName, std::string{"cannot write to standard output: "} + reason);
    return exitStatus == done ? failed : exitStatus;
}
