#pragma once

#include "Core/ClosedRange.h"
#include "Core/RawValue.h"
#include "Core/Scheduling/Instant.h"

namespace vespra {

/// What the system does when the agents are done.
enum class AgentEndAction { letSleep, sleepNow, shutDown };

template <>
inline constexpr auto rawValues<AgentEndAction> = RawValueTable<AgentEndAction, 3>{{
    {AgentEndAction::letSleep, "letSleep"},
    {AgentEndAction::sleepNow, "sleepNow"},
    {AgentEndAction::shutDown, "shutDown"},
}};

/// The user's choices for agent sessions.
struct AgentPolicy {
    /// What `graceDelay` may be; other values are clamped where they are used.
    static constexpr ClosedRange<Seconds> graceRange{0s, 900s};
    /// How long the user can cancel a sleep or a shutdown before it is carried out.
    static constexpr Seconds forcedActionCountdown = 60s;

    /// How long all agents must stay done before the session ends; used through `effectiveGraceDelay`.
    Seconds graceDelay = 120s;
    /// Whether an agent that waits for the user's approval counts as done.
    bool waitingCountsAsFinished = true;
    AgentEndAction endAction = AgentEndAction::letSleep;

    Seconds effectiveGraceDelay() const { return graceRange.clamped(graceDelay); }

    bool operator==(const AgentPolicy&) const = default;
};

} // namespace vespra
