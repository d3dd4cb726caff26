#include "Helper/OverrideLeases.h"

#include <algorithm>

namespace vespra {

OverrideLeases::OverrideLeases(SleepOverride& sleepOverride, TaskScheduling& tasks, SystemLog log, Seconds timeout)
    : override_{sleepOverride}
    , tasks_{tasks}
    , log_{std::move(log)}
    , timeout_{timeout}
    , hasRecovered_{sleepOverride.recover()}
{
    scheduleNext();
}

HelperResult OverrideLeases::enable(const ClientName& client)
{
    endExpired();
    const auto applied = override_.apply();
    if (applied)
        leases_.insert_or_assign(client, Lease{tasks_.continuousNow(), timeout_});
    else if (!override_.isInForce())
        leases_.clear(); // an override that had to be taken back is nobody's
    scheduleNext();
    return applied;
}

bool OverrideLeases::heartbeat(const ClientName& client)
{
    endExpired();
    const auto lease = leases_.find(client);
    if (lease == leases_.end())
        return false;
    lease->second.renew(tasks_.continuousNow());
    scheduleNext();
    return true;
}

HelperResult OverrideLeases::end(const ClientName& client)
{
    leases_.erase(client);
    return restoreIfLast();
}

HelperResult OverrideLeases::endAll()
{
    leases_.clear();
    return restoreIfLast();
}

void OverrideLeases::endExpired()
{
    const auto now = tasks_.continuousNow();
    const auto isExpired = [&](const auto& entry) { return entry.second.isExpired(now); };
    if (std::erase_if(leases_, isExpired) == 0 && !override_.isOwing())
        return;
    if (const auto restored = restoreIfLast(); !restored)
        log_.error("Restauration impossible pour l'instant : " + restored.error());
}

HelperResult OverrideLeases::restoreIfLast()
{
    HelperResult restored;
    const bool wasInForce = override_.isInForce();
    if (leases_.empty())
        restored = override_.restore();
    scheduleNext();
    if (wasInForce && !override_.isInForce())
        notify(onRestored);
    return restored;
}

/// Sets the one task: the next lease to expire, or the next try.
void OverrideLeases::scheduleNext()
{
    const auto now = tasks_.continuousNow();
    std::optional<Seconds> wait;
    if (override_.isOwing())
        wait = retryInterval;
    for (const auto& [client, lease] : leases_)
        wait = std::min(wait.value_or(lease.expiresAt() - now), lease.expiresAt() - now);
    next_.reset();
    if (wait)
        next_ = tasks_.schedule(*wait, lifetime_.guard([this] { endExpired(); }));
    notify(onChange);
}

} // namespace vespra
