#pragma once

#include "Helper/OverrideLeases.h"
#include "Helper/ShutLidSleep.h"
#include "HelperProtocol/HelperXPC.h"

namespace vespra {

/// Decides whether a client may have what it asks for.
class Authorization {
public:
    virtual ~Authorization() = default;
    enum class Right { closedLid, sleep, shutDown };
    /// Answers now or later. A failure is a sentence for the log.
    virtual void check(const ClientName& client, Right right, std::function<void(HelperResult)> answer) = 0;
};

/// The machine that the daemon serves. Everything here outlives it.
struct HelperMachine {
    SleepSetting& setting;
    LedgerStorage& storage;
    PowerControl& power;
    Authorization& authorization;
    TaskScheduling& tasks;
    const WallClock& clock;
};

/// What the privileged component does, whatever carries the requests. Puts back what an earlier run left behind before
/// it does anything else. One thread.
class HelperDaemon {
public:
    explicit HelperDaemon(
        HelperMachine machine, Seconds leaseTimeout = ClosedLidLease<ContinuousInstant>::defaultTimeout);
    /// Ends every lease.
    ~HelperDaemon();
    HelperDaemon(const HelperDaemon&) = delete;
    HelperDaemon& operator=(const HelperDaemon&) = delete;

    /// Speaks for one client; its end is the client's end. To be destroyed before the daemon.
    std::unique_ptr<HelperXPCProtocol> clientSession(const ClientName& client);
    /// The computer is about to sleep.
    void systemWillSleep() { shutLid_.cancel(); }

    /// Nothing is in force, owed or under way: the program may end.
    bool isIdle() const { return leases_.isIdle() && !shutLid_.isUnderWay() && waitingForRights_ == 0; }
    /// Told when `isIdle` may have changed.
    std::function<void()> onChange;

private:
    class ClientSession;

    /// Keeps the daemon from being idle until the last copy is gone.
    std::shared_ptr<void> waitForRight();
    void sleepNow(HelperReply<HelperRefusal> reply, int triesLeft);

    HelperMachine machine_;
    SystemLog log_;
    SleepOverride override_;
    OverrideLeases leases_;
    ShutLidSleep shutLid_;
    std::unique_ptr<ScheduledTask> sleepRetry_;
    int waitingForRights_ = 0;
    Lifetime lifetime_;
};

} // namespace vespra
