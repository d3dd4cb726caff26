#include "Helper/HelperDaemon.h"

#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    /// On some systems the end of the override takes effect a little later, and sleep is refused until then.
    constexpr int sleepTries = 5;
    constexpr Seconds sleepRetryInterval = 1s;

    using Right = Authorization::Right;
    using Interaction = Authorization::Interaction;
    using Reason = Authorization::Denial::Reason;
    using Verdict = Authorization::Verdict;

    HelperRefusal refusal(const HelperResult& result)
    {
        return result ? HelperRefusal{} : HelperRefusal{result.error()};
    }

} // namespace

class HelperDaemon::ClientSession final : public HelperXPCProtocol {
public:
    ClientSession(HelperDaemon& daemon, ClientName name)
        : daemon_{daemon}
        , name_{std::move(name)}
    {
    }
    ~ClientSession() override
    {
        if (const auto ended = daemon_.leases_.end(name_); !ended)
            daemon_.log_.error("Restauration impossible pour l'instant : " + ended.error());
    }

    void protocolVersion(HelperReply<std::int64_t> reply) override { reply(HelperXPC::protocolVersion); }

    void enableClosedLid(HelperReply<HelperRefusal> reply) override
    {
        const auto enableUnlessOutdated = [this, reply, wish = ++wish_](bool hasAuthenticated) {
            if (wish != wish_)
                return reply(HelperRefusal{"la demande a été annulée"});
            hasAuthenticated_ = hasAuthenticated_ || hasAuthenticated;
            reply(refusal(enable()));
        };
        check(Right::closedLid, Interaction::none, [this, reply, enableUnlessOutdated](const Verdict& verdict) {
            if (verdict)
                return enableUnlessOutdated(false);
            if (verdict.error().reason != Reason::needsAuthentication)
                return refuse(verdict, reply);
            check(Right::closedLid, Interaction::allowed, [this, reply, enableUnlessOutdated](const Verdict& second) {
                second ? enableUnlessOutdated(true) : refuse(second, reply);
            });
        });
    }
    /// A user who has left or logged out must not keep other people's computer awake.
    void heartbeat(HelperReply<bool> reply) override
    {
        if (!daemon_.leases_.isAlive(name_))
            return reply(false);
        check(Right::closedLid,
            Interaction::none,
            [this, reply, at = daemon_.machine_.tasks.continuousNow()](
                const Verdict& verdict) { reply(renew(verdict, at)); });
    }
    /// Needs no right: it undoes no more than what this client did.
    void restoreSleep(HelperReply<HelperRefusal> reply) override
    {
        ++wish_;
        reply(refusal(daemon_.leases_.end(name_)));
    }
    void sleepNow(HelperReply<HelperRefusal> reply) override
    {
        // No password is asked for: the user is there when closed-lid mode is switched on, but not when the work is
        // done.
        check(Right::sleep, Interaction::none, [this, reply](const Verdict& verdict) {
            if (!verdict)
                return refuse(verdict, reply);
            if (daemon_.sleepRetry_)
                return reply(HelperRefusal{"une mise en veille est déjà en cours"});
            daemon_.sleepNow(reply, sleepTries);
        });
    }
    void shutDown(HelperReply<HelperRefusal> reply) override
    {
        check(Right::shutDown, Interaction::none, [this, reply](const Verdict& verdict) {
            verdict ? reply(refusal(daemon_.shutDown())) : refuse(verdict, reply);
        });
    }

private:
    /// The answer is dropped with a client that goes meanwhile.
    void check(Right right, Interaction interaction, std::function<void(const Verdict&)> answer)
    {
        const auto answered = lifetime_.guard(std::move(answer));
        daemon_.machine_.authorization.check(
            name_, right, interaction, [answered, waiting = daemon_.waitForRight()](const Verdict& verdict) {
                answered(verdict);
            });
    }

    void refuse(const Verdict& verdict, const HelperReply<HelperRefusal>& reply)
    {
        logDenial(verdict);
        reply(HelperRefusal{verdict.error().description});
    }

    void logDenial(const Verdict& verdict)
    {
        daemon_.log_.error("Demande refusée à " + name_ + " : " + verdict.error().description);
    }

    HelperResult enable()
    {
        const auto enabled = daemon_.leases_.enable(name_);
        // Not before `enable`: that first ends leases that had expired unnoticed, which starts the sleep for a shut
        // lid.
        if (enabled)
            daemon_.shutLid_.cancel();
        return enabled;
    }

    /// Whether the lease goes on. If nobody can say, it is not renewed but lives to its end: an authority that is just
    /// being restarted takes nothing away.
    bool renew(const Verdict& verdict, ContinuousInstant at)
    {
        if (verdict || (hasAuthenticated_ && verdict.error().reason == Reason::needsAuthentication))
            return daemon_.leases_.renew(name_, at);
        logDenial(verdict);
        if (verdict.error().reason == Reason::unanswered)
            return daemon_.leases_.isAlive(name_);
        if (const auto ended = daemon_.leases_.end(name_); !ended)
            daemon_.log_.error("Restauration impossible pour l'instant : " + ended.error());
        return false;
    }

    HelperDaemon& daemon_;
    ClientName name_;
    /// Counts the requests of the client that change the override: an authorization for an earlier one is ignored.
    int wish_ = 0;
    /// A person has authenticated for this client, and its right depends on that: asked about it again, the authority
    /// would say once more that a person is needed.
    bool hasAuthenticated_ = false;
    Lifetime lifetime_;
};

HelperDaemon::HelperDaemon(HelperMachine machine, Seconds leaseTimeout)
    : machine_{machine}
    , log_{Brand::appBundleID(), "helper"}
    , override_{machine.setting, machine.storage, machine.clock, log_}
    , leases_{override_, machine.tasks, log_, leaseTimeout}
    , shutLid_{machine.power, machine.tasks, log_}
{
    const auto changed = lifetime_.guard([this] { notify(onChange); });
    leases_.onRestored = lifetime_.guard([this] { shutLid_.begin(); });
    leases_.onChange = changed;
    shutLid_.onChange = changed;
    if (leases_.hasRecovered())
        shutLid_.begin(ShutLidSleep::firstLookAfterRecovery);
}

HelperDaemon::~HelperDaemon()
{
    leases_.onRestored = nullptr;
    leases_.onChange = nullptr;
    if (const auto ended = leases_.endAll(); !ended)
        log_.error("Restauration impossible, elle se fera au prochain démarrage : " + ended.error());
}

std::unique_ptr<HelperXPCProtocol> HelperDaemon::clientSession(const ClientName& client)
{
    return std::make_unique<ClientSession>(*this, client);
}

std::shared_ptr<void> HelperDaemon::waitForRight()
{
    ++waitingForRights_;
    notify(onChange);
    const auto end = lifetime_.guard([this](void*) {
        --waitingForRights_;
        notify(onChange);
    });
    return {this, end};
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): a copy, for the task that calls this goes with its own
void HelperDaemon::sleepNow(HelperReply<HelperRefusal> reply, int triesLeft)
{
    sleepRetry_.reset();
    // Checked first: the override is not given up for a sleep that is refused anyway.
    if (const auto possible = machine_.power.canSuspend(); !possible)
        return reply(refusal(possible));
    if (const auto ended = leases_.endAll(); !ended)
        return reply(refusal(ended));
    const auto slept = machine_.power.suspend();
    if (slept || triesLeft <= 1)
        return reply(refusal(slept));
    const auto due = machine_.tasks.continuousNow() + sleepRetryInterval;
    sleepRetry_ = machine_.tasks.schedule(sleepRetryInterval, lifetime_.guard([this, reply, triesLeft, due] {
        const bool hasSlept = wasSleptOver(due, machine_.tasks.continuousNow());
        if (!hasSlept && leases_.isIdle())
            return sleepNow(reply, triesLeft - 1);
        sleepRetry_.reset();
        reply(hasSlept ? HelperRefusal{} : HelperRefusal{"le mode capot fermé a été activé entre-temps"});
    }));
}

/// The override ends after the shutdown was asked for: before, a computer with its lid shut would sleep instead. It
/// ends even though something may still stop the shutdown, since by then no client may be left that ends it.
HelperResult HelperDaemon::shutDown()
{
    if (const auto asked = machine_.power.powerOff(); !asked)
        return asked;
    if (const auto ended = leases_.endAll(); !ended)
        log_.error("Restauration impossible pour l'instant : " + ended.error());
    shutLid_.cancel();
    return {};
}

} // namespace vespra
