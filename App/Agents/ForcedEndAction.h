#pragma once

#include "Core/Agents/AgentPolicy.h"
#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"
#include "Core/Scheduling/TaskScheduling.h"

namespace vespra {

/// Holds a sleep or a shutdown for a countdown that the user can cancel, then has it carried out. Main thread only.
class ForcedEndAction {
public:
    struct Pending {
        AgentEndAction action;
        /// When it will be carried out.
        Instant deadline;
        bool operator==(const Pending&) const = default;
    };

    explicit ForcedEndAction(TaskScheduling& tasks)
        : tasks_{tasks}
    {
    }

    /// Carries the action out.
    std::function<void(AgentEndAction)> perform;
    /// Told when a pending action is cancelled.
    std::function<void()> onCancel;

    /// Absent while nothing is scheduled.
    const std::optional<Pending>& pending() const { return pending_.get(); }

    /// Starts the countdown; an action that is pending gives way to this one without a word. `letSleep` forces nothing
    /// and is not scheduled.
    void schedule(AgentEndAction action, Instant now);
    /// Does nothing when nothing is pending.
    void cancel();

private:
    void carryOut();

    TaskScheduling& tasks_;
    Observed<std::optional<Pending>> pending_;
    std::unique_ptr<ScheduledTask> task_;
    Lifetime lifetime_;
};

} // namespace vespra
