#pragma once

// Core/Agents: what coding agents report through their hooks, the tracker and the end condition that follow them, and
// the hooks in the agents' settings files, handled as text.

#include "Core/Agents/AgentKind.h"
#include "Core/Agents/AgentOrigin.h"
#include "Core/Agents/HookInput.h"
#include "Core/Coding/JSONSource.h"
#include "Core/Scheduling/Instant.h"

#include <optional>
#include <string>

namespace vespra {

/// What an agent says that its session does now. In JSON as its raw value.
enum class AgentSignal { sessionStarted, working, waitingForApproval, finished, sessionEnded };

template <>
inline constexpr auto rawValues<AgentSignal> = RawValueTable<AgentSignal, 5>{{
    {AgentSignal::sessionStarted, "sessionStarted"},
    {AgentSignal::working, "working"},
    {AgentSignal::waitingForApproval, "waitingForApproval"},
    {AgentSignal::finished, "finished"},
    {AgentSignal::sessionEnded, "sessionEnded"},
}};

/// One report of an agent about itself.
struct AgentEvent {
    AgentKind agent = AgentKind::claudeCode;
    /// The agent's own identifier; never empty.
    std::string sessionID;
    /// The agent's working directory; absent when it gave none.
    std::optional<std::string> cwd;
    AgentSignal signal = AgentSignal::sessionStarted;
    /// When it happened; the application replaces the sender's date by that of the receipt.
    Instant date;
    AgentOrigin origin{};

    bool operator==(const AgentEvent&) const = default;
};

/// What `hookInput`, the JSON that an agent gives its hook command, reports. Absent for what is not a JSON object with
/// an event name and a session identifier, and for events that say nothing about the agent's activity.
std::optional<AgentEvent> agentEvent(std::string_view hookInput, AgentKind agent, Instant date);
std::optional<AgentEvent> agentEvent(const HookInput& input, AgentKind agent, Instant date);

/// One line of JSON without line feed, as it goes over the socket; the date as seconds since 2001. What is absent is
/// left out.
std::string encoded(const AgentEvent& event);
/// The reverse; fails with the place and what was expected there. Of the origin, what cannot be read counts as absent:
/// no event is lost with it.
std::expected<AgentEvent, DecodingError> decodedAgentEvent(std::string_view line);

} // namespace vespra
