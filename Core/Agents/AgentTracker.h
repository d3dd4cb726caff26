#pragma once

#include "Core/Agents/AgentEvent.h"
#include "Core/Observation/Observed.h"
#include "Core/Session/AgentPolicy.h"

#include <functional>
#include <vector>

namespace vespra {

/// What a session of an agent does. Whether waiting counts as busy is up to `AgentPolicy`.
enum class AgentActivity { idle, working, waitingForApproval };

template <>
inline constexpr auto rawValues<AgentActivity> = RawValueTable<AgentActivity, 3>{{
    {AgentActivity::idle, "idle"},
    {AgentActivity::working, "working"},
    {AgentActivity::waitingForApproval, "waitingForApproval"},
}};

/// A session of an agent, as its last events describe it.
struct AgentSession {
    std::string id; // "claude:" or "codex:" and the agent's own identifier
    AgentKind agent = AgentKind::claudeCode;
    std::optional<std::string> cwd; // the last working directory reported
    AgentActivity activity = AgentActivity::idle;
    Instant lastEventAt;
    /// When the event came that changed `activity` last, or the first one.
    Instant activitySince;
    /// It was busy at some time since it was first seen: what is idle now has finished something.
    bool hasWorked = false;

    /// The last component of `cwd` as a `displayText`; absent without one.
    std::optional<std::string> folderName() const;

    bool operator==(const AgentSession&) const = default;
};

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
    /// Drops the sessions that are silent for too long.
    void pruneStale(Instant now);
    /// Whether some session counts as busy under `policy`.
    bool hasBusySession(const AgentPolicy& policy) const;

    /// Called after each recorded event, and after a pruning that removed something.
    std::function<void()> onChange;

private:
    void end(const std::string& id);
    void update(const std::string& id, const AgentEvent& event);

    Observed<std::vector<AgentSession>> sessions_;
    Observed<std::optional<AgentSession>> lastFinished_;
};

} // namespace vespra
