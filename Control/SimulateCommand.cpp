#include "Control/Command.h"

namespace vespra::control {

void addSimulateCommand(CLI::App& vespractl, int& exitStatus)
{
    vespractl.add_subcommand("simulate", "Plays a scenario in virtual time")->callback([&exitStatus] {
        exitStatus = badInput;
    });
}

} // namespace vespra::control
