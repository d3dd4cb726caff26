#pragma once

#include "ControlProtocol/CommandLine.h"

#include <string>
#include <vector>

/// vespractl, the program for terminals and scripts, a file per subcommand; here is what they share. Each subcommand
/// adds itself to the command line and, when chosen, stores its exit status.
namespace vespra::control {

/// 0 done, 1 refused or failed, 2 bad input, 4 the application is not running, 5 done, but closed-lid mode cannot come
/// into force. Some commands have more of their own.
enum ExitStatus { done = 0, failed = 1, badInput = 2, notRunning = 4, noClosedLid = 5 };

/// How `run` exits where it, and not its command, has failed.
inline constexpr int runFailed = 125;
/// Cuts the command of `run` off the arguments: all that follows its options, as it stands. Empty for other verbs.
std::vector<std::string> takeCommand(int& argc, char** argv);

inline constexpr const char* programName = "vespractl";

/// Complains with `message`, and returns `status`.
inline int say(int status, const std::string& message)
{
    commandLine::complain(programName, message);
    return status;
}

void addDoctorCommand(CLI::App& vespractl, int& exitStatus);
void addMachineCommand(CLI::App& vespractl, int& exitStatus);
void addHooksCommand(CLI::App& vespractl, int& exitStatus);
/// `command` is what `run` is to start.
void addRunCommands(CLI::App& vespractl, int& exitStatus, const std::vector<std::string>& command);
void addSessionCommands(CLI::App& vespractl, int& exitStatus);
void addSettingsCommand(CLI::App& vespractl, int& exitStatus);
void addSimulateCommand(CLI::App& vespractl, int& exitStatus);
void addStatusCommand(CLI::App& vespractl, int& exitStatus);

} // namespace vespra::control
