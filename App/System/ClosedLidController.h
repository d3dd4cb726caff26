#pragma once

#include "App/System/HelperRequests.h"
#include "App/System/HelperService.h"
#include "App/System/MachineFacts.h"
#include "App/System/SystemPower.h"
#include "Core/ClosedLid/ClosedLidLease.h"
#include "Core/Observation/ObservationLoop.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Session/AgentPolicy.h"
#include "Core/Session/SessionCoordinator.h"
#include "Log/SystemLog.h"

namespace vespra {

/// What the controller works with. Everything here outlives it.
struct ClosedLidEnvironment {
    HelperService& service;
    HelperConnector connect;
    MachineFacts& facts;
    SystemPower& power;
    TaskScheduling& tasks;
    MainLoop& mainLoop;
    /// While it returns true, the override stays although no session asks for it any more. Empty: never. Followed by an
    /// observation loop.
    std::function<bool()> keepsOverride{};
};

/// The application's side of closed-lid mode: follows the privileged component's registration, has it apply and restore
/// the sleep override as the session asks, renews the lease, and tells the coordinator. One request that changes the
/// override is under way at a time; after its reply the controller does what is wanted by then. What a session wants
/// and cannot have is looked for again after a while. Main thread only.
class ClosedLidController {
public:
    static constexpr Seconds approvalPollInterval = 2s;
    static constexpr Seconds retryInterval = 65s;
    /// A component that has not answered by then counts as unreachable, and its connection is dropped.
    static constexpr Seconds replyLimit = 25s;
    /// Enabling may wait for the user's password.
    static constexpr Seconds enableReplyLimit = 120s;
    /// Without an answer by then the heartbeat may have been lost, and the lease that the one before it renewed is
    /// over.
    static constexpr Seconds heartbeatReplyLimit
        = ClosedLidLease<ContinuousInstant>::defaultTimeout - HelperXPC::heartbeatInterval;

    ClosedLidController(SessionCoordinator& coordinator, ClosedLidEnvironment environment);
    ClosedLidController(const ClosedLidController&) = delete;
    ClosedLidController& operator=(const ClosedLidController&) = delete;

    // Followed by observation loops.
    const HelperStatus& status() const { return told_.get().status; }
    /// The component has confirmed the override.
    bool isApplied() const { return told_.get().isApplied; }

    /// Registers the component, and takes the user to where it is approved if need be: an action of the user's.
    void install();
    /// Takes the user to where the component is approved.
    void openApproval() { environment_.service.openSettings(); }
    /// Takes the component out of the system: an action of the user's.
    void remove();
    /// Asks the system, and then the component, anew.
    void refreshStatus();
    /// `refreshStatus`, unless the component is ready.
    void refreshUnlessReady();
    /// The status is being asked for or changed, and may soon differ. Followed by observation loops.
    bool isSettling() const { return isAsking_.get() || isRegistering_.get(); }

    /// The component is being installed or removed; that can wait for the user, who may have to type a password.
    /// Followed by observation loops.
    bool isRegistering() const { return isRegistering_.get(); }

    /// Puts the computer to sleep: the component does it if it is ready, else the system as for any application. If the
    /// component refuses, the computer stays awake.
    void sleepNow();
    /// Has the component shut the computer down; if it is not ready or refuses, puts the computer to sleep instead. The
    /// override stays until the component has answered: without it, a computer with its lid shut would sleep at once.
    void shutDown();
    /// Carries out what follows an agent session.
    void perform(AgentEndAction action);
    /// The same as a callback that holds the controller weakly.
    std::function<void(AgentEndAction)> performer();

    /// The earliest moment at which a restore may be sent; absent: at once. Used up by the next restore.
    void setRestoreNotBefore(std::optional<ContinuousInstant> moment) { restoreNotBefore_ = moment; }

    /// If the override is applied, blocks until it has been taken back or `timeout` has passed. The controller asks for
    /// nothing afterwards.
    void restoreBeforeQuit(Seconds timeout);

private:
    struct Told {
        HelperStatus status = helper::NotInstalled{};
        bool isApplied = false;
        bool operator==(const Told&) const = default;
    };

    void connectionLost();
    /// Gives up on every reply still owed, and on the override: the component takes it back.
    void dropConnection(const std::string& reason);
    void fail();
    void unreachable(const HelperUnreachable& error);
    void setStatus(HelperStatus status);

    void scheduleRetry();

    void registered(bool succeeded);
    void show(HelperServiceStatus serviceStatus);
    void pollApproval();
    void ping();
    void rejectVersion();

    void followSession();
    void follow(bool disablesSystemSleep);
    void apply();
    void applied(const std::expected<HelperRefusal, HelperUnreachable>& reply);
    void scheduleHeartbeat();
    void heartbeat();
    void restore();
    void sendRestore();
    void restored(const std::expected<HelperRefusal, HelperUnreachable>& reply);
    void doWhatIsWanted();

    bool isOvertaken(ContinuousInstant due) const;
    void sleepDirectly();

    SessionCoordinator& coordinator_;
    ClosedLidEnvironment environment_;
    SystemLog log_;
    HelperRequests requests_;
    HelperStatus status_ = helper::NotInstalled{};
    /// The status and the override as the views see and follow them. The controller's own loop uses `status_` and
    /// `isApplied_`, which it changes itself and so must not follow.
    Observed<Told> told_;
    bool wantsApplied_ = false;
    bool isApplied_ = false;
    bool isQuitting_ = false;
    /// The session asks for closed-lid mode, whether it can have it or not.
    bool isWanted_ = false;
    /// A request that changes the override is under way.
    bool isChanging_ = false;
    /// Counts the refreshes: an answer to an earlier one is out of date.
    int refresh_ = 0;
    Observed<bool> isAsking_;
    Observed<bool> isRegistering_;
    Observed<bool> isShuttingDown_;
    /// When a connection was last lost that held the override.
    std::optional<ContinuousInstant> lastLoss_;
    std::optional<ContinuousInstant> restoreNotBefore_;
    std::unique_ptr<ScheduledTask> heartbeatTask_;
    std::unique_ptr<ScheduledTask> approvalPollTask_;
    std::unique_ptr<ScheduledTask> retryTask_;
    std::unique_ptr<ScheduledTask> restoreTask_;
    std::optional<ObservationLoop> requirementLoop_;
    Lifetime lifetime_;
};

} // namespace vespra
