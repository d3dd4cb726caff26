#pragma once

#include "App/System/HelperConnection.h"
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
    /// A heartbeat that is not answered by then may not have come, and the lease of the one before has run out.
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
    /// The same where closed-lid mode could not come into force.
    void refreshUnlessReady();
    /// The status is being found out or changed, and may be another soon. Followed by observation loops.
    bool isSettling() const { return isAsking_.get() || isRegistering_.get(); }

    /// It is being put into the system or taken out, which may take as long as the user does. Followed by observation
    /// loops.
    bool isRegistering() const { return isRegistering_.get(); }

    /// Through the component; without it, directly. What the component refuses is not done otherwise.
    void sleepNow();
    /// Through the component; without it, or refused, the machine sleeps instead. The override stays until it has
    /// answered: a shut computer would sleep first.
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
    /// A request whose reply is still owed.
    struct Request {
        std::function<void(const HelperUnreachable&)> giveUp;
        std::unique_ptr<ScheduledTask> limit;
    };

    struct Told {
        HelperStatus status = helper::NotInstalled{};
        bool isApplied = false;
        bool operator==(const Told&) const = default;
    };

    HelperConnection& connection();
    void connectionLost();
    /// Gives up on every reply still owed, and on the override: the component takes it back.
    void dropConnection(const std::string& reason);
    /// Sends one request. `handle` gets the reply, or unreachable: after `limit`, or when the connection ends.
    template <class Value, class Handle>
    void send(void (HelperXPCProtocol::*operation)(HelperReply<Value>), Seconds limit, Handle handle);
    void limitWait(const std::shared_ptr<Request>& request, Seconds limit);
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
    std::unique_ptr<HelperConnection> connection_;
    HelperStatus status_ = helper::NotInstalled{};
    /// What the controller's own loop must not follow: the two as the coordinator and the views know them.
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
    std::vector<std::shared_ptr<Request>> requests_;
    std::optional<ContinuousInstant> restoreNotBefore_;
    std::unique_ptr<ScheduledTask> heartbeatTask_;
    std::unique_ptr<ScheduledTask> approvalPollTask_;
    std::unique_ptr<ScheduledTask> retryTask_;
    std::unique_ptr<ScheduledTask> restoreTask_;
    std::optional<ObservationLoop> requirementLoop_;
    Lifetime lifetime_;
};

} // namespace vespra
