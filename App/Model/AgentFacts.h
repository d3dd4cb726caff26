#pragma once

#include "Core/Agents/AgentEndCondition.h"

#include <string>

namespace vespra {
class AppModel;
}

/// What the panel shows of the agents, as values.
namespace vespra::panelFacts {

/// What a row says that an agent does; an idle one that has worked is finished.
enum class AgentStatus { working, waitingForApproval, finished, idle };
AgentStatus agentStatus(const AgentSession& session);

/// How long ago something was, in one short word: "now", "12s", "24m", "1h 5m".
std::string sinceText(Seconds elapsed);
/// How often that word changes.
Seconds sinceStep(Seconds elapsed);

/// Two letters in the place of the agent's picture.
std::string_view glyph(AgentKind kind);

/// The row of an agent's session.
struct AgentLine {
    std::string_view glyph; // "CC"
    std::string name; // of the folder, else of the agent
    std::string detail; // "Claude Code · 24m"
    AgentStatus status;
    std::string activity; // the status in words
    bool operator==(const AgentLine&) const = default;
};
AgentLine agentLine(const AgentSession& session, Instant now);

/// Whether the panel lists the agents: there are some, and the session that runs, or is chosen, goes by them.
bool showsAgents(const AppModel& model);

/// What follows when the agents end the session that runs.
struct EndAction {
    std::string name;
    std::string detail; // why it will be otherwise; empty when it will not
    bool isSkipped;
    bool operator==(const EndAction&) const = default;
};
/// Absent where nothing is forced, and where the agents no longer end the session.
std::optional<EndAction> endAction(const AppModel& model);

} // namespace vespra::panelFacts
