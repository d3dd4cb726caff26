#include "App/Agents/ForcedEndAction.h"

namespace vespra {

void ForcedEndAction::schedule(AgentEndAction action, Instant now)
{
    if (action == AgentEndAction::letSleep)
        return;
    constexpr auto countdown = AgentPolicy::forcedActionCountdown;
    pending_.set(Pending{.action = action, .deadline = now + countdown});
    task_ = tasks_.schedule(countdown, lifetime_.guard([this] { carryOut(); }));
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
