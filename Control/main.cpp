#include "Control/Command.h"

int main(int argc, char** argv)
{
    using namespace vespra::control;
    CLI::App vespractl{"Controls Vespra from a terminal or a script."};
    vespractl.require_subcommand(1);
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
