#pragma once

#include "Core/Agents/AgentTracker.h"
#include "Core/Session/AgentPolicy.h"

#include <string>

/// The agents' values in the user's words.
namespace vespra {

/// "Shut Down", as the end action's label.
std::string title(AgentEndAction action);
/// What the end action does, under its choice.
std::string explanation(AgentEndAction action);
/// The body of the notification that the agents are done.
std::string notificationBody(AgentEndAction action);

/// "Claude Code (project) is working".
std::string statusLine(const AgentSession& session);
/// "Claude Code (project) has been working since 14:03."
std::string sinceLine(const AgentSession& session);

} // namespace vespra
