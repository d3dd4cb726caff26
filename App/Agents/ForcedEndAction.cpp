#include "App/Agents/ForcedEndAction.h"

#include <algorithm>

namespace vespra {

namespace {

    /// The countdown runs in steps: a step that ends late means that the computer has slept.
    constexpr Seconds step = 5s;
    constexpr Seconds lateness = 3s;

} // namespace

void ForcedEndAction::schedule(AgentEndAction action, Instant now)
{
    if (action == AgentEndAction::letSleep)
        return;
    constexpr auto countdown = AgentPolicy::forcedActionCountdown;
    pending_.set(Pending{.action = action, .deadline = now + countdown});
    due_ = tasks_.continuousNow() + countdown;
    countDown();
}

void ForcedEndAction::countDown()
{
    const auto now = tasks_.continuousNow();
    const auto wait = std::min(step, due_ - now);
    task_ = tasks_.schedule(wait, lifetime_.guard([this, next = now + wait] {
        const auto then = tasks_.continuousNow();
        if (then - next > lateness)
            sleptOver();
        else if (then < due_)
            countDown();
        else
            carryOut();
    }));
}

void ForcedEndAction::sleptOver()
{
    const auto action = pending_.get()->action;
    if (action == AgentEndAction::sleepNow)
        return cancel();
    schedule(action, clock_.now());
    notify(onPostpone, action);
}

void ForcedEndAction::cancel()
{
    if (!pending_.get())
        return;
    task_.reset();
    pending_.set({});
    notify(onCancel);
}

void ForcedEndAction::carryOut()
{
    const auto due = pending_.get();
    task_.reset();
    pending_.set({});
    if (due)
        notify(perform, due->action);
}

} // namespace vespra
