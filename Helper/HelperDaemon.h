#pragma once

// Helper: the privileged program. The rules are portable; linux/ and macos/ carry requests and reach the machine.

#include "Helper/OverrideLeases.h"
#include "Helper/ShutLidSleep.h"
#include "HelperProtocol/HelperXPC.h"

namespace vespra {

/// Decides whether a client may have what it asks for.
class Authorization {
public:
    virtual ~Authorization() = default;
    enum class Right { closedLid, sleep, shutDown };
    /// Whether a person may be asked to prove who they are, which takes as long as they take.
    enum class Interaction { none, allowed };
    struct Denial {
        /// `needsAuthentication`: only a person could give the right, and was not asked. `unanswered`: nobody could
        /// say.
        enum class Reason { denied, needsAuthentication, unanswered };
        Reason reason;
        /// A sentence for the log.
        std::string description;
    };
    using Verdict = std::expected<void, Denial>;
    /// Answers now or later.
    virtual void check(
        const ClientName& client, Right right, Interaction interaction, std::function<void(const Verdict&)> answer)
        = 0;
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

/// The privileged component's behaviour, whatever transport carries the requests. Puts back what an earlier run left
/// behind before it does anything else. One thread.
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
    /// Called when `isIdle` may have changed.
    std::function<void()> onChange;

private:
    class ClientSession;

    /// Keeps the daemon from being idle until the last copy is gone.
    std::shared_ptr<void> waitForRight();
    void sleepNow(HelperReply<HelperRefusal> reply, int triesLeft);
    HelperResult shutDown();

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
