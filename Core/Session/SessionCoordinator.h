#pragma once

#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Energy/ThermalMonitoring.h"
#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"
#include "Core/Scheduling/DeadlineScheduling.h"
#include "Core/Scheduling/WallClock.h"
#include "Core/Session/SessionEndCondition.h"
#include "Core/Session/SessionMachine.h"

namespace vespra {

/// What the coordinator works with. Everything here outlives it.
struct SessionEnvironment {
    const WallClock& clock;
    DeadlineScheduling& scheduler;
    PowerSourceMonitoring& power;
    ThermalMonitoring& thermal;
};

/// The live owner of the session: keeps the conditions up to date, asks the clock, keeps exactly one pending deadline
/// and hands every event to one sink. Views that read it inside an observation loop follow it. Main thread only.
class SessionCoordinator {
public:
    /// Idle; takes the monitors' current readings and listens to them from here on.
    SessionCoordinator(
        SessionSettings settings, Calendar calendar, SessionEnvironment environment, HelperStatus helper);
    SessionCoordinator(const SessionCoordinator&) = delete;
    SessionCoordinator& operator=(const SessionCoordinator&) = delete;

    /// Receives every event, in order, after the deadline has been set anew.
    std::function<void(const SessionEvent&)> onEvent;

    const SessionState& state() const { return machine_.get().state(); }
    const SessionConditions& conditions() const { return conditions_.get(); }
    Instant now() const { return environment_.clock.now(); }
    PowerRequirements requirements() const { return machine_.get().requirements(conditions()); }
    /// The date of the next evaluation without a new reading; absent while time alone changes nothing.
    std::optional<Instant> pendingDeadline() const;
    bool canExtend() const { return machine_.get().canExtend(now()); }
    ClosedLidChecklist closedLidChecklist() const { return machine_.get().closedLidChecklist(conditions()); }
    std::vector<ActiveGuardrail> activeGuardrails() const { return machine_.get().activeGuardrails(conditions()); }
    std::optional<StartRefusal> refusal(const SessionOptions& options) const
    {
        return machine_.get().refusal(options, conditions());
    }
    ClosedLidStatus closedLidStatus(bool requested) const
    {
        return machine_.get().closedLidStatus(requested, conditions());
    }

    const SessionSettings& settings() const { return machine_.get().settings(); }
    /// Takes effect at once, also on a running session.
    void setSettings(const SessionSettings& settings);

    /// `endCondition` may be empty. A refused start changes nothing and does not touch it.
    std::expected<void, StartRefusal> start(
        const SessionPlan& plan, const SessionOptions& options, std::shared_ptr<SessionEndCondition> endCondition = {});
    void stop(const EndReason& reason);
    void extend();
    void setKeepsDisplayAwake(bool value);
    /// A refusal changes nothing.
    std::expected<void, StartRefusal> setClosedLid(bool enabled);
    void systemWillSleep() { stop(end::SystemSleep{}); }

    void updateHelper(const HelperStatus& status, bool lidSleepDisabled);
    void updateLid(bool closedWithoutExternalDisplay);

private:
    template <class Change> auto changeMachine(Change change);
    template <class Change> void changeConditions(Change change);
    template <class Question> auto askEndCondition(Question question) const;
    void reevaluate();
    void deliver(const SessionEvents& events);
    void detachEndCondition();
    void reschedule();

    Observed<SessionMachine> machine_;
    Observed<SessionConditions> conditions_;
    SessionEnvironment environment_;
    std::unique_ptr<ScheduledDeadline> scheduledDeadline_;
    std::shared_ptr<SessionEndCondition> endCondition_;
    mutable bool isAskingEndCondition_ = false;
    /// Events that the condition caused while it was being asked.
    SessionEvents waitingEvents_;
    Lifetime lifetime_;
};

} // namespace vespra
