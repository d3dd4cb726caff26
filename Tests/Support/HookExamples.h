#pragma once

#include "Core/Agents/AgentKind.h"
#include "Core/Agents/HookInstaller.h"

namespace vespra {

/// The hooks of `agent` as they are for a user named someone.
inline HookInstaller exampleInstaller(AgentKind agent)
{
    const auto events = hookEvents(agent);
    return {.command = R"("/home/someone/.local/share/Vespra/vespra-agent" )" + std::string{rawValue(agent)},
        .events = {events.begin(), events.end()},
        .marker = "vespra-agent",
        .timeout = 5};
}

} // namespace vespra
