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
    // The lease runs from the request, which is the client's sign of life; a slow disk may delay the end of the work.
    const auto asked = tasks_.continuousNow();
    if (const auto applied = override_.apply(); !applied) {
        if (!override_.isInForce())
            leases_.clear(); // the override could not be kept, for any client
        scheduleNext();
        return applied;
    }
    leases_.insert_or_assign(client, Lease{asked, timeout_});
    if (!isAlive(client))
        return std::unexpected{"l'activation a duré plus longtemps que le bail"};
    return {};
}

bool OverrideLeases::isAlive(const ClientName& client)
{
    endExpired();
    return leases_.contains(client);
}

bool OverrideLeases::renew(const ClientName& client, ContinuousInstant at)
{
    if (!isAlive(client))
        return false;
    leases_.at(client).renew(at);
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

/// Also sets the task for the leases that have not expired. So a timer that fires too early does no harm: it is set
/// anew.
void OverrideLeases::endExpired()
{
    const auto now = tasks_.continuousNow();
    const auto isExpired = [&](const auto& entry) { return entry.second.isExpired(now); };
    if (std::erase_if(leases_, isExpired) == 0 && !override_.isOwing())
        return scheduleNext();
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
        next_ = tasks_.schedule(std::max(*wait, shortestWait), lifetime_.guard([this] { endExpired(); }));
    notify(onChange);
}

} // namespace vespra
