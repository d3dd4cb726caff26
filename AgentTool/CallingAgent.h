#pragma once

#include "Core/Agents/AgentEvent.h"

namespace vespra {

/// Says of `event`'s origin which process runs this hook: the one that the agent names itself, else the nearest
/// ancestor that is not a shell. Says nothing if the system does not tell.
void nameProcess(AgentEvent& event);

} // namespace vespra
