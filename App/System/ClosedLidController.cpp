#include "App/System/ClosedLidController.h"

#include "Core/Scheduling/MainThread.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

ClosedLidController::ClosedLidController(SessionCoordinator& coordinator, ClosedLidEnvironment environment)
    : coordinator_{coordinator}
    , environment_{std::move(environment)}
    , log_{Brand::appBundleID(), "closed-lid"}
    , requests_{environment_.connect, environment_.tasks, environment_.mainLoop}
{
    mainThread::check();
    requests_.onLost = lifetime_.guard([this] { connectionLost(); });
    requests_.onSilent = lifetime_.guard([this] { dropConnection("aucune réponse dans le délai"); });
    environment_.service.onChange = lifetime_.guard([this] { refreshStatus(); });
    refreshStatus();
    requirementLoop_.emplace(environment_.mainLoop, [this] { followSession(); });
}

// The connection

/// The override has gone with the connection. A component that keeps disappearing is not restarted every time.
void ClosedLidController::connectionLost()
{
    const bool wasApplied = isApplied_;
    dropConnection("connexion interrompue");
    if (!wasApplied || isQuitting_)
        return;
    const auto now = environment_.tasks.continuousNow();
    const auto lossBefore = std::exchange(lastLoss_, now);
    if (lossBefore && now - *lossBefore < HelperXPC::heartbeatInterval)
        fail();
    else
        refreshStatus();
}

void ClosedLidController::dropConnection(const std::string& reason)
{
    heartbeatTask_.reset();
    const bool wasApplied = std::exchange(isApplied_, false);
    requests_.drop(reason);
    if (wasApplied)
        setStatus(status_);
}

void ClosedLidController::setStatus(HelperStatus status)
{
    status_ = status;
    told_.set({status_, isApplied_});
    coordinator_.updateHelper(status_, isApplied_);
    scheduleRetry();
}

/// Not while approval is pending: that has a poll of its own.
void ClosedLidController::scheduleRetry()
{
    if (isReady(status_) || std::holds_alternative<helper::AwaitingApproval>(status_))
        retryTask_.reset();
    else if ((isWanted_ || isApplied_) && !retryTask_ && !isQuitting_)
        retryTask_ = environment_.tasks.schedule(retryInterval, lifetime_.guard([this] { refreshStatus(); }));
}

void ClosedLidController::fail() { setStatus(helper::Failed{}); }

void ClosedLidController::unreachable(const HelperUnreachable& error)
{
    log_.error("Helper injoignable : " + error.description);
    fail();
}

// Registration

void ClosedLidController::install()
{
    isRegistering_.set(true);
    environment_.service.registerService(lifetime_.guard([this](const std::expected<void, std::string>& result) {
        isRegistering_.set(false);
        if (!result) {
            log_.error("Enregistrement du helper : " + result.error());
            fail();
        }
        registered(result.has_value());
    }));
}

void ClosedLidController::remove()
{
    isRegistering_.set(true);
    environment_.service.unregisterService(lifetime_.guard([this](const std::expected<void, std::string>& result) {
        isRegistering_.set(false);
        if (!result)
            log_.error("Désenregistrement du helper : " + result.error());
        refreshStatus();
    }));
}

void ClosedLidController::registered(bool succeeded)
{
    const int refresh = ++refresh_;
    isAsking_.set(true);
    environment_.service.status(lifetime_.guard([this, refresh, succeeded](HelperServiceStatus serviceStatus) {
        if (refresh == refresh_)
            isAsking_.set(false);
        const bool needsApproval = serviceStatus == HelperServiceStatus::requiresApproval;
        if (needsApproval)
            environment_.service.openSettings();
        // A registration that only lacks approval may have been reported as an error.
        if (refresh == refresh_ && (succeeded || needsApproval))
            show(serviceStatus);
    }));
}

void ClosedLidController::refreshUnlessReady()
{
    if (!isReady(status_))
        refreshStatus();
}

void ClosedLidController::refreshStatus()
{
    mainThread::check();
    approvalPollTask_.reset();
    retryTask_.reset();
    const int refresh = ++refresh_;
    isAsking_.set(true);
    const auto showUnlessOutdated = lifetime_.guard([this, refresh](HelperServiceStatus serviceStatus) {
        if (refresh == refresh_)
            show(serviceStatus);
    });
    environment_.facts.read(lifetime_.guard([this, refresh, showUnlessOutdated](MachineFacts::Reading facts) {
        if (refresh != refresh_)
            return;
        isAsking_.set(facts.hasLid && facts.isSignedByOwnTeam);
        if (!facts.hasLid)
            setStatus(helper::Unsupported{ClosedLidUnsupportedReason::noBuiltInDisplay});
        else if (!facts.isSignedByOwnTeam)
            setStatus(helper::Unsupported{ClosedLidUnsupportedReason::unsignedBuild});
        else
            environment_.service.status(showUnlessOutdated);
    }));
}

void ClosedLidController::show(HelperServiceStatus serviceStatus)
{
    isAsking_.set(serviceStatus == HelperServiceStatus::enabled);
    switch (serviceStatus) {
    case HelperServiceStatus::notRegistered:
    case HelperServiceStatus::notFound:
        return setStatus(helper::NotInstalled{});
    case HelperServiceStatus::requiresApproval:
        setStatus(helper::AwaitingApproval{});
        return pollApproval();
    case HelperServiceStatus::enabled:
        return ping();
    case HelperServiceStatus::unknown:
        break;
    }
    fail();
}

void ClosedLidController::pollApproval()
{
    const auto look = lifetime_.guard([this, refresh = refresh_](HelperServiceStatus serviceStatus) {
        if (refresh != refresh_)
            return;
        if (serviceStatus == HelperServiceStatus::requiresApproval)
            pollApproval();
        else
            refreshStatus();
    });
    approvalPollTask_ = environment_.tasks.schedule(
        approvalPollInterval, lifetime_.guard([this, look] { environment_.service.status(look); }));
}

void ClosedLidController::ping()
{
    const auto isOutdated = [this, refresh = refresh_] { return refresh != refresh_; };
    requests_.send(&HelperXPCProtocol::protocolVersion,
        replyLimit,
        [this, isOutdated](const std::expected<std::int64_t, HelperUnreachable>& version) {
            if (isOutdated())
                return;
            isAsking_.set(false);
            if (!version)
                return unreachable(version.error());
            if (*version != HelperXPC::protocolVersion)
                return rejectVersion();
            setStatus(helper::Ready{});
            doWhatIsWanted();
        });
}

void ClosedLidController::rejectVersion()
{
    fail();
    dropConnection("version inattendue");
    retryTask_ = environment_.tasks.schedule(retryInterval, lifetime_.guard([this] { refreshStatus(); }));
}

// The override

void ClosedLidController::followSession()
{
    const auto* session = coordinator_.state().activeSession();
    isWanted_ = session && session->options.closedLid;
    scheduleRetry();
    // All are read unconditionally, so that the loop follows all of them.
    const bool isAsked = coordinator_.requirements().disablesSystemSleep;
    const bool isKept = environment_.keepsOverride && environment_.keepsOverride();
    const bool isShuttingDown = isShuttingDown_.get();
    follow(isAsked || (wantsApplied_ && (isKept || isShuttingDown)));
}

void ClosedLidController::follow(bool disablesSystemSleep)
{
    if (disablesSystemSleep == wantsApplied_)
        return;
    wantsApplied_ = disablesSystemSleep;
    if (wantsApplied_)
        apply();
    else
        restore();
}

/// Does what is still to be done after the reply to the previous request.
void ClosedLidController::doWhatIsWanted()
{
    if (wantsApplied_ && !isApplied_)
        apply();
    else if (!wantsApplied_ && isApplied_)
        restore();
    else if (wantsApplied_ && !heartbeatTask_ && !isQuitting_)
        scheduleHeartbeat();
}

void ClosedLidController::apply()
{
    if (isChanging_ || isQuitting_)
        return;
    isChanging_ = true;
    requests_.send(
        &HelperXPCProtocol::enableClosedLid, enableReplyLimit, [this](const auto& reply) { applied(reply); });
}

void ClosedLidController::applied(const std::expected<HelperRefusal, HelperUnreachable>& reply)
{
    isChanging_ = false;
    if (!reply)
        return unreachable(reply.error());
    if (const auto& refusal = *reply) {
        log_.error("Activation refusée par le helper : " + *refusal);
        return fail();
    }
    isApplied_ = true;
    setStatus(helper::Ready{});
    doWhatIsWanted();
}

void ClosedLidController::scheduleHeartbeat()
{
    heartbeatTask_
        = environment_.tasks.schedule(HelperXPC::heartbeatInterval, lifetime_.guard([this] { heartbeat(); }));
}

void ClosedLidController::heartbeat()
{
    scheduleHeartbeat();
    requests_.send(&HelperXPCProtocol::heartbeat,
        heartbeatReplyLimit,
        [this](const std::expected<bool, HelperUnreachable>& inForce) {
            if (!wantsApplied_ || isChanging_)
                return;
            if (!inForce)
                return unreachable(inForce.error());
            if (*inForce)
                return;
            isApplied_ = false;
            setStatus(status_);
            doWhatIsWanted();
        });
}

void ClosedLidController::restore()
{
    heartbeatTask_.reset();
    const auto now = environment_.tasks.continuousNow();
    if (!restoreNotBefore_ || *restoreNotBefore_ <= now)
        return sendRestore();
    restoreTask_ = environment_.tasks.schedule(*restoreNotBefore_ - now, lifetime_.guard([this] { sendRestore(); }));
}

void ClosedLidController::sendRestore()
{
    restoreTask_.reset();
    restoreNotBefore_.reset();
    if (wantsApplied_ || !isApplied_ || isChanging_ || isQuitting_)
        return;
    isChanging_ = true;
    requests_.send(&HelperXPCProtocol::restoreSleep, replyLimit, [this](const auto& reply) { restored(reply); });
}

void ClosedLidController::restored(const std::expected<HelperRefusal, HelperUnreachable>& reply)
{
    isChanging_ = false;
    if (!reply)
        return unreachable(reply.error());
    if (const auto& refusal = *reply) {
        log_.error("Restauration refusée par le helper : " + *refusal);
        return fail();
    }
    isApplied_ = false;
    setStatus(status_);
    doWhatIsWanted();
}

void ClosedLidController::restoreBeforeQuit(Seconds timeout)
{
    mainThread::check();
    isQuitting_ = true;
    heartbeatTask_.reset();
    restoreTask_.reset();
    if (!isApplied_)
        return;
    const auto reply = requests_.connection().restoreSleepAndWait(timeout);
    if (!reply)
        log_.error("Helper injoignable : " + reply.error().description);
    else if (const auto& refusal = *reply)
        log_.error("Restauration refusée par le helper : " + *refusal);
    else {
        isApplied_ = false;
        setStatus(status_);
    }
}

// Sleep and shutdown

void ClosedLidController::sleepNow()
{
    if (!isReady(status_))
        return sleepDirectly();
    requests_.send(&HelperXPCProtocol::sleepNow,
        replyLimit,
        [this, due = environment_.tasks.continuousNow() + replyLimit](
            const std::expected<HelperRefusal, HelperUnreachable>& reply) {
            if (!reply) {
                unreachable(reply.error());
                if (!isOvertaken(due))
                    sleepDirectly();
            } else if (const auto& refusal = *reply)
                log_.error("Mise en veille refusée par le helper : " + *refusal);
        });
}

void ClosedLidController::shutDown()
{
    if (!isReady(status_))
        return sleepNow();
    isShuttingDown_.set(true);
    requests_.send(&HelperXPCProtocol::shutDown,
        replyLimit,
        [this, due = environment_.tasks.continuousNow() + replyLimit](
            const std::expected<HelperRefusal, HelperUnreachable>& reply) {
            isShuttingDown_.set(false);
            if (!reply)
                unreachable(reply.error());
            else if (const auto& refusal = *reply)
                log_.error("Extinction refusée par le helper : " + *refusal);
            else
                return;
            if (!isOvertaken(due))
                sleepNow();
        });
}

/// Whether it is too late for a substitute, such as a sleep in the place of a shutdown: the user has started a session
/// or woken the computer since the request, and would be surprised. `due` is when the reply was due.
bool ClosedLidController::isOvertaken(ContinuousInstant due) const
{
    return coordinator_.state().isActive() || environment_.tasks.continuousNow() - due > HelperRequests::lateness;
}

void ClosedLidController::sleepDirectly()
{
    environment_.power.sleepNow([log = log_](const std::expected<void, std::string>& result) {
        if (!result)
            log.error("Mise en veille impossible : " + result.error());
    });
}

void ClosedLidController::perform(AgentEndAction action)
{
    switch (action) {
    case AgentEndAction::letSleep:
        return;
    case AgentEndAction::sleepNow:
        return sleepNow();
    case AgentEndAction::shutDown:
        return shutDown();
    }
}

std::function<void(AgentEndAction)> ClosedLidController::performer()
{
    return lifetime_.guard([this](AgentEndAction action) { perform(action); });
}

} // namespace vespra
