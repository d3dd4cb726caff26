#pragma once

#include "Core/Agents/AgentActivity.h"
#include "Core/Agents/AgentEvent.h"
#include "Core/Observation/Observed.h"
#include "Core/Session/AgentPolicy.h"

#include <functional>
#include <vector>

namespace vespra {

/// The key of a session: its agent's raw value, ":" and the agent's own identifier.
std::string agentSessionID(const AgentEvent& event);

/// A session of an agent, as its last events describe it.
struct AgentSession {
    std::string id; // `agentSessionID`
    AgentKind agent = AgentKind::claudeCode;
    std::optional<std::string> cwd; // the last working directory reported
    AgentActivity activity = AgentActivity::idle;
    Instant lastEventAt;
    /// When `activity` changed last: the date of that event, or of the change itself where a correction knows it.
    Instant activitySince;
    /// It was busy at some time since it was first seen: what is idle now has finished something.
    bool hasWorked = false;

    /// The last component of `cwd` as a `displayText`; absent without one.
    std::optional<std::string> folderName() const;

    bool operator==(const AgentSession&) const = default;
};

/// What an agent does after it has sent `signal`.
AgentActivity activityAfter(AgentSignal signal);

/// Folds the agents' reports into the list of their live sessions. Main thread only.
class AgentTracker {
public:
    /// A session that was silent for longer than this is forgotten.
    static constexpr Seconds staleAfter = 12h;

    /// Oldest first.
    const std::vector<AgentSession>& sessions() const { return sessions_.get(); }
    /// The last session that finished, or ended while it was busy.
    const std::optional<AgentSession>& lastFinished() const { return lastFinished_.get(); }

    /// Creates, updates or ends the session that the event is about.
    void record(const AgentEvent& event);
    /// Corrects what a session does, and has done since `since`, where its events are wrong about it. Changes nothing
    /// without such a session, or if it does that already.
    void correct(const std::string& id, AgentActivity activity, Instant since);
    /// The session has ended without an event.
    void endUnheard(const std::string& id);
    /// Drops the sessions that are silent for too long.
    void pruneStale(Instant now);
    /// Whether some session counts as busy under `policy`.
    bool hasBusySession(const AgentPolicy& policy) const;

    /// Called after each recorded event, and after a correction or a pruning that changed something.
    std::function<void()> onChange;

private:
    bool end(const std::string& id);
    void update(const std::string& id, const AgentEvent& event);

    Observed<std::vector<AgentSession>> sessions_;
    Observed<std::optional<AgentSession>> lastFinished_;
};

} // namespace vespra
