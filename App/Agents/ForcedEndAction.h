#pragma once

#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"
#include "Core/Session/AgentPolicy.h"

namespace vespra {

/// Holds a sleep or a shutdown for a countdown that the user can cancel, then has it carried out. Nobody can cancel
/// while the computer sleeps: afterwards a pending sleep counts as done, and the countdown to a shutdown starts again.
/// Main thread only.
class ForcedEndAction {
public:
    struct Pending {
        AgentEndAction action;
        /// When it will be carried out.
        Instant deadline;
        bool operator==(const Pending&) const = default;
    };

    /// Both outlive it.
    ForcedEndAction(TaskScheduling& tasks, const WallClock& clock)
        : tasks_{tasks}
        , clock_{clock}
    {
    }

    /// Carries the action out.
    std::function<void(AgentEndAction)> perform;
    /// Called when a pending action is cancelled, also when the computer has slept before it.
    std::function<void()> onCancel;
    /// Called when the countdown to a pending action has started again.
    std::function<void(AgentEndAction)> onPostpone;

    /// Absent while nothing is scheduled.
    const std::optional<Pending>& pending() const { return pending_.get(); }

    /// Starts the countdown; silently replaces a pending action. `letSleep` forces nothing and is not scheduled.
    void schedule(AgentEndAction action, Instant now);
    /// Does nothing when nothing is pending.
    void cancel();

private:
    void countDown();
    void sleptOver();
    void carryOut();

    TaskScheduling& tasks_;
    const WallClock& clock_;
    ContinuousInstant due_;
    Observed<std::optional<Pending>> pending_;
    std::unique_ptr<ScheduledTask> task_;
    Lifetime lifetime_;
};

} // namespace vespra
