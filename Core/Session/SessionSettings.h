#pragma once

#include "Core/ClosedLid/ClosedLidPolicy.h"
#include "Core/Coding/JSONSource.h"
#include "Core/Energy/EnergyPolicy.h"
#include "Core/Session/AgentPolicy.h"

#include <optional>

namespace vespra {

/// The user's guardrails and agent settings.
struct SessionSettings {
    EnergyPolicy energy;
    ClosedLidPolicy closedLid;
    /// The cap given to agent plans; absent: none.
    std::optional<Seconds> agentSafetyCap = 12h;
    AgentPolicy agents;

    bool operator==(const SessionSettings&) const = default;
};

JSON toJSON(const SessionSettings& settings);

/// Reads within `decoded`, leniently: each of "energy", "closedLid" and "agents" that is missing or malformed takes
/// its default alone. "agentSafetyCap": missing gives the default, null no cap, a malformed one fails.
SessionSettings readSessionSettings(const JSONSource& source);

} // namespace vespra
