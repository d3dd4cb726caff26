#pragma once

#include "Core/Agents/AgentEndCondition.h"
#include "Core/Session/SessionCoordinator.h"

#include <string>

namespace vespra {

/// What the session will do, in one line for the terminal: "Awake until 18:30."
std::string startLine(const ActiveSession& session);

/// What happened, in one line for the terminal.
std::string reportLine(const SessionEvent& event);

/// How the session stands, in one line: the time, and whether the agents let it end. `condition` is null except for an
/// agent session.
std::string standingLine(const ActiveSession& session, Instant now, const AgentEndCondition* condition);

/// The same, and what each agent does.
std::string liveLine(
    const ActiveSession& session, Instant now, const AgentEndCondition* condition, const AgentTracker& tracker);

} // namespace vespra
