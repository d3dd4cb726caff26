#pragma once

#include "Core/ClosedLid/ClosedLidLease.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Helper/SleepOverride.h"

#include <map>

namespace vespra {

/// The caller as the system names it: a connection, not a user.
using ClientName = std::string;

/// Keeps the override in force as long as some client's lease lives, and not longer.
class OverrideLeases {
public:
    /// How long to wait before trying again what could not be put back.
    static constexpr Seconds retryInterval = 5s;
    /// Keeps a timer that fires slightly too early from becoming a busy loop.
    static constexpr Seconds shortestWait = 1ms;

    /// Puts back first what an earlier run left behind.
    OverrideLeases(SleepOverride& sleepOverride, TaskScheduling& tasks, SystemLog log, Seconds timeout);
    /// Whether an earlier run had left something behind.
    bool hasRecovered() const { return hasRecovered_; }

    /// Called after the override has gone, whatever ended it.
    std::function<void()> onRestored;
    /// Called when `isIdle` may have changed.
    std::function<void()> onChange;

    /// Starts the client's lease, or renews it, from the moment of the call on. Fails, too, when the lease has run out
    /// before the override was in force.
    HelperResult enable(const ClientName& client);
    /// False if the client has no lease, or no longer.
    bool isAlive(const ClientName& client);
    /// Renews the client's lease if it is alive; `at` is when the client asked for it. False as for `isAlive`.
    bool renew(const ClientName& client, ContinuousInstant at);
    /// Ends the client's lease if it has one. A failure to put the setting back is returned, and the attempt is
    /// repeated every `retryInterval`.
    HelperResult end(const ClientName& client);
    /// The same for every client.
    HelperResult endAll();

    /// Nothing is in force and nothing is owed.
    bool isIdle() const { return leases_.empty() && !override_.isOwing(); }

private:
    using Lease = ClosedLidLease<ContinuousInstant>;

    void endExpired();
    HelperResult restoreIfLast();
    void scheduleNext();

    SleepOverride& override_;
    TaskScheduling& tasks_;
    SystemLog log_;
    Seconds timeout_;
    bool hasRecovered_;
    std::map<ClientName, Lease> leases_;
    std::unique_ptr<ScheduledTask> next_;
    Lifetime lifetime_;
};

} // namespace vespra
