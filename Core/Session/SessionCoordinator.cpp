#include "Core/Session/SessionCoordinator.h"

#include "Core/Scheduling/MainThread.h"

#include <algorithm>

namespace vespra {

SessionCoordinator::SessionCoordinator(
    SessionSettings settings, Calendar calendar, SessionEnvironment environment, HelperStatus helper)
    : machine_{SessionMachine{settings, calendar}}
    , conditions_{SessionConditions{
          .power = environment.power.snapshot(),
          .thermal = environment.thermal.level(),
          .helper = helper,
      }}
    , environment_{environment}
{
    mainThread::check();
    environment_.power.onChange = lifetime_.guard([this](PowerSnapshot snapshot) {
        changeConditions([&](SessionConditions& conditions) { conditions.power = snapshot; });
        reevaluate();
    });
    environment_.thermal.onChange = lifetime_.guard([this](ThermalLevel level) {
        changeConditions([&](SessionConditions& conditions) { conditions.thermal = level; });
        reevaluate();
    });
}

template <class Change> auto SessionCoordinator::changeMachine(Change change)
{
    mainThread::check();
    auto machine = machine_.get();
    const auto store = [&] { machine_.set(machine); };
    if constexpr (std::is_void_v<decltype(change(machine))>) {
        change(machine);
        store();
    } else {
        auto result = change(machine);
        store();
        return result;
    }
}

template <class Change> void SessionCoordinator::changeConditions(Change change)
{
    mainThread::check();
    auto conditions = conditions_.get();
    change(conditions);
    conditions_.set(conditions);
}

/// Keeps the condition alive while it is asked, since its answer may end the session, which releases it. Changes that
/// it reports meanwhile are ignored: the caller evaluates everything afterwards.
template <class Question> auto SessionCoordinator::askEndCondition(Question question) const
{
    struct Asking {
        bool& flag;
        bool before = std::exchange(flag, true);
        ~Asking() { flag = before; }
    };
    const auto condition = endCondition_;
    const Asking asking{isAskingEndCondition_};
    return question(*condition);
}

void SessionCoordinator::setSettings(const SessionSettings& settings)
{
    changeMachine([&](SessionMachine& machine) { machine.setSettings(settings); });
    reevaluate();
}

std::expected<void, StartRefusal> SessionCoordinator::start(
    const SessionPlan& plan, const SessionOptions& options, std::shared_ptr<SessionEndCondition> endCondition)
{
    const auto startedAt = now();
    const auto started
        = changeMachine([&](SessionMachine& machine) { return machine.start(plan, options, conditions(), startedAt); });
    if (!started)
        return std::unexpected{started.error()};
    if (endCondition) {
        endCondition_ = std::move(endCondition);
        endCondition_->onChange = lifetime_.guard([this] {
            if (!isAskingEndCondition_)
                reevaluate();
        });
        askEndCondition([&](SessionEndCondition& condition) { condition.sessionDidBegin(startedAt); });
    }
    deliver(*started);
    reevaluate();
    return {};
}

void SessionCoordinator::stop(const EndReason& reason)
{
    deliver(changeMachine([&](SessionMachine& machine) { return machine.stop(reason, now()); }));
}

void SessionCoordinator::extend()
{
    deliver(changeMachine([&](SessionMachine& machine) { return machine.extend(now()); }));
}

void SessionCoordinator::setKeepsDisplayAwake(bool value)
{
    changeMachine([&](SessionMachine& machine) { machine.setKeepsDisplayAwake(value); });
}

std::expected<void, StartRefusal> SessionCoordinator::setClosedLid(bool enabled)
{
    const auto changed
        = changeMachine([&](SessionMachine& machine) { return machine.setClosedLid(enabled, conditions(), now()); });
    if (!changed)
        return std::unexpected{changed.error()};
    deliver(*changed);
    return {};
}

void SessionCoordinator::updateHelper(const HelperStatus& status, bool lidSleepDisabled)
{
    changeConditions([&](SessionConditions& conditions) {
        conditions.helper = status;
        conditions.lidSleepDisabled = lidSleepDisabled;
    });
    reevaluate();
}

void SessionCoordinator::updateLid(bool closedWithoutExternalDisplay)
{
    changeConditions([&](SessionConditions& conditions) {
        conditions.lidClosedWithoutExternalDisplay = closedWithoutExternalDisplay;
    });
}

void SessionCoordinator::reevaluate()
{
    const auto evaluatedAt = now();
    auto events = changeMachine([&](SessionMachine& machine) { return machine.update(conditions(), evaluatedAt); });
    if (const auto asked = endCondition_; asked && state().isActive()) {
        const auto reason
            = askEndCondition([&](SessionEndCondition& condition) { return condition.evaluate(evaluatedAt); });
        // Meanwhile the session may have ended for another reason, and a new one may run.
        if (reason && asked == endCondition_) {
            auto ended = changeMachine([&](SessionMachine& machine) { return machine.stop(*reason, evaluatedAt); });
            std::ranges::move(ended, std::back_inserter(events));
        }
    }
    deliver(events);
}

void SessionCoordinator::deliver(const SessionEvents& events)
{
    if (!state().isActive())
        detachEndCondition();
    reschedule();
    if (isAskingEndCondition_) {
        // The caller has earlier events to deliver first.
        std::ranges::copy(events, std::back_inserter(waitingEvents_));
        return;
    }
    for (const auto& event : events)
        notify(onEvent, event);
    for (const auto& event : std::exchange(waitingEvents_, {}))
        notify(onEvent, event);
}

void SessionCoordinator::detachEndCondition()
{
    if (const auto condition = std::exchange(endCondition_, nullptr)) {
        condition->onChange = nullptr;
        condition->sessionDidEnd();
    }
}

std::optional<Instant> SessionCoordinator::pendingDeadline() const
{
    auto earliest = machine_.get().nextDeadline();
    if (endCondition_)
        if (const auto deadline
            = askEndCondition([this](SessionEndCondition& condition) { return condition.nextDeadline(now()); }))
            earliest = std::min(earliest.value_or(*deadline), *deadline);
    return earliest;
}

void SessionCoordinator::reschedule()
{
    scheduledDeadline_.reset();
    if (const auto deadline = pendingDeadline())
        scheduledDeadline_ = environment_.scheduler.schedule(*deadline, lifetime_.guard([this] { reevaluate(); }));
}

} // namespace vespra
