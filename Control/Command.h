#pragma once

#include <CLI/CLI.hpp>

/// What the subcommands of vespractl share. Each adds itself to the application's command line and, when chosen,
/// stores its exit status.
namespace vespra::control {

/// 0 done, 1 refused or failed, 2 bad input, 4 the application is not running, 5 done, but closed-lid mode cannot come
/// into force. Some commands have more of their own.
enum ExitStatus { done = 0, failed = 1, badInput = 2, notRunning = 4, noClosedLid = 5 };

void addDoctorCommand(CLI::App& vespractl, int& exitStatus);
void addMachineCommand(CLI::App& vespractl, int& exitStatus);
void addHooksCommand(CLI::App& vespractl, int& exitStatus);
void addRunCommands(CLI::App& vespractl, int& exitStatus);
void addSessionCommands(CLI::App& vespractl, int& exitStatus);
void addSettingsCommand(CLI::App& vespractl, int& exitStatus);
void addSimulateCommand(CLI::App& vespractl, int& exitStatus);
void addStatusCommand(CLI::App& vespractl, int& exitStatus);

} // namespace vespra::control
