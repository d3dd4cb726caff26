#pragma once

#include "App/System/simulated/SimulatedMachine.h"

#include <string_view>

/// What vespractl and a simulated laptop say to each other: one JSON object each way.
namespace vespra::machineProtocol {

/// {"set":{"battery":"57"}}; without settings {"set":{}}, which only asks.
std::string request(const MachineSettings& settings);

/// Carries out a request and answers with what is then in force: {"machine":{"battery":"57", ...},
/// "held":[{"type":"PreventUserIdleSystemSleep","name":"..."}], "notifications":[{"identifier":"session.endingSoon",
/// "title":"...","body":"...","actions":[{"identifier":"session.extend","title":"..."}]}],"alarms":0}, where "alarms"
/// is how often the alarm has sounded; or {"error":"..."}, and nothing has changed.
std::string answer(SimulatedMachine& machine, std::string_view request);

/// "machine.sock" in the support folder.
std::string defaultPath();

/// No request is longer, in bytes.
inline constexpr std::size_t longestRequest = 65536;

} // namespace vespra::machineProtocol
