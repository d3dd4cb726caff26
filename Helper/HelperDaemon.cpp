#include "Helper/HelperDaemon.h"

#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    /// Letting go of the override takes effect a little later on some systems, and refuses sleep until then.
    constexpr int sleepTries = 5;
    constexpr Seconds sleepRetryInterval = 1s;

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
        withRight(Authorization::Right::closedLid, reply, [this, reply, wish = ++wish_] {
            if (wish != wish_)
                return reply(HelperRefusal{"la demande a été annulée"});
            const auto enabled = daemon_.leases_.enable(name_);
            // Only now: a lease that had run out unnoticed has just ended, too.
            if (enabled)
                daemon_.shutLid_.cancel();
            reply(refusal(enabled));
        });
    }
    void heartbeat(HelperReply<bool> reply) override { reply(daemon_.leases_.heartbeat(name_)); }
    /// Needs no right: it undoes no more than what this client did.
    void restoreSleep(HelperReply<HelperRefusal> reply) override
    {
        ++wish_;
        reply(refusal(daemon_.leases_.end(name_)));
    }
    void sleepNow(HelperReply<HelperRefusal> reply) override
    {
        withRight(Authorization::Right::sleep, reply, [this, reply] {
            if (daemon_.sleepRetry_)
                return reply(HelperRefusal{"une mise en veille est déjà en cours"});
            daemon_.sleepNow(reply, sleepTries);
        });
    }
    void shutDown(HelperReply<HelperRefusal> reply) override
    {
        withRight(Authorization::Right::shutDown, reply, [this, reply] {
            // The override must not outlive the session, whatever the shutdown is stopped by.
            if (const auto ended = daemon_.leases_.endAll(); !ended)
                return reply(refusal(ended));
            reply(refusal(daemon_.machine_.power.powerOff()));
        });
    }

private:
    /// Runs `work` if the client may; it is dropped, unanswered, with a client that goes meanwhile.
    template <class Work>
    void withRight(Authorization::Right right, const HelperReply<HelperRefusal>& reply, const Work& work)
    {
        const auto answered = lifetime_.guard([this, reply, work](const HelperResult& allowed) {
            if (allowed)
                return work();
            daemon_.log_.error("Demande refusée à " + name_ + " : " + allowed.error());
            reply(HelperRefusal{allowed.error()});
        });
        daemon_.machine_.authorization.check(name_,
            right,
            [answered, waiting = daemon_.waitForRight()](const HelperResult& allowed) { answered(allowed); });
    }

    HelperDaemon& daemon_;
    ClientName name_;
    /// Counts the changes of what the client wants: an authorization that comes after the next one counts no more.
    int wish_ = 0;
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
        shutLid_.begin();
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
    if (const auto ended = leases_.endAll(); !ended)
        return reply(refusal(ended));
    const auto slept = machine_.power.suspend();
    if (slept || triesLeft <= 1)
        return reply(refusal(slept));
    sleepRetry_ = machine_.tasks.schedule(
        sleepRetryInterval, lifetime_.guard([this, reply, triesLeft] { sleepNow(reply, triesLeft - 1); }));
}

} // namespace vespra
