#pragma once

#include "Core/Agents/AgentKind.h"
#include "Core/Agents/AgentOrigin.h"

namespace vespra {

/// The process of the agent that runs this hook: the one that it names itself, else the nearest ancestor that is not a
/// shell. Absent if the system does not tell.
std::optional<ProcessIdentity> callingAgent(AgentKind agent);

} // namespace vespra
