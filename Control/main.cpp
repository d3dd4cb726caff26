#include "Control/Command.h"
#include "HelperProtocol/AutoreleasePool.h"

namespace {

/// What is wrong; a subcommand that there is not by its name.
std::string complaint(const CLI::App* vespractl, const CLI::Error& error)
{
    const auto unknown = vespractl->remaining(true);
    if (error.get_name() != "RequiredError" || unknown.empty())
        return CLI::FailureMessage::simple(vespractl, error);
    return "There is no \"" + unknown.front() + "\" here.\nRun with --help for more information.\n";
}

int run(int argc, char** argv)
{
    using namespace vespra::control;
    CLI::App vespractl{"Controls Vespra from a terminal or a script."};
    vespractl.require_subcommand(1);
    vespractl.failure_message(complaint);
    int exitStatus = done;
    addStatusCommand(vespractl, exitStatus);
    addSessionCommands(vespractl, exitStatus);
    addRunCommands(vespractl, exitStatus);
    addSettingsCommand(vespractl, exitStatus);
    addDoctorCommand(vespractl, exitStatus);
    addMachineCommand(vespractl, exitStatus);
    addHooksCommand(vespractl, exitStatus);
    addSimulateCommand(vespractl, exitStatus);
    try {
        vespractl.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help is a "parse error" of status 0.
        return vespractl.exit(error) == 0 ? done : badInput;
    }
    return exitStatus;
}

} // namespace

int main(int argc, char** argv)
{
    return vespra::inAutoreleasePool([&] { return run(argc, argv); });
}
