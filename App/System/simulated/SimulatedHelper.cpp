#include "App/System/simulated/SimulatedHelper.h"

namespace vespra {

namespace {

    const HelperUnreachable gone{"le helper simulé ne répond pas"};

} // namespace

class SimulatedHelper::Connection final : public HelperConnection {
public:
    explicit Connection(SimulatedHelper* helper)
        : helper_{helper}
    {
        if (helper_)
            helper_->connections_.insert(this);
    }
    ~Connection() override
    {
        if (!helper_)
            return;
        helper_->connections_.erase(this);
        helper_->leases_.erase(this);
    }

    void invalidate()
    {
        helper_->leases_.erase(this);
        helper_->mainLoop_.post(lifetime_.guard([this] { notify(onInvalidation); }));
    }
    void forgetHelper() { helper_ = nullptr; }

    void protocolVersion(HelperReply<std::int64_t> reply) override
    {
        answer(reply, [](SimulatedHelper& helper) -> std::expected<std::int64_t, HelperUnreachable> {
            if (!helper.isReachable())
                return std::unexpected{gone};
            return helper.mode_ == Mode::outdated ? HelperXPC::protocolVersion - 1 : HelperXPC::protocolVersion;
        });
    }
    void enableClosedLid(HelperReply<HelperRefusal> reply) override
    {
        answer(reply, [this](SimulatedHelper& helper) { return helper.change([&] { helper.leases_.insert(this); }); });
    }
    void heartbeat(HelperReply<bool> reply) override
    {
        answer(reply, [this](SimulatedHelper& helper) -> std::expected<bool, HelperUnreachable> {
            if (!helper.isReachable())
                return std::unexpected{gone};
            return helper.leases_.contains(this);
        });
    }
    void restoreSleep(HelperReply<HelperRefusal> reply) override
    {
        answer(reply, [this](SimulatedHelper& helper) { return helper.change([&] { helper.leases_.erase(this); }); });
    }
    void sleepNow(HelperReply<HelperRefusal> reply) override
    {
        answer(reply, [](SimulatedHelper& helper) {
            return helper.change([&] {
                helper.leases_.clear();
                notify(helper.onSleep);
            });
        });
    }
    void shutDown(HelperReply<HelperRefusal> reply) override
    {
        answer(reply, [](SimulatedHelper& helper) {
            return helper.change([&] {
                helper.leases_.clear();
                notify(helper.onShutDown);
            });
        });
    }
    std::expected<HelperRefusal, HelperUnreachable> restoreSleepAndWait(Seconds) override
    {
        if (!helper_ || helper_->mode_ == Mode::stuck)
            return std::unexpected{gone};
        return helper_->change([&] { helper_->leases_.erase(this); });
    }

private:
    /// Works out the answer in a later turn, as a component elsewhere would.
    template <class Value, class Work> void answer(HelperReply<Value> reply, Work work)
    {
        if (!helper_)
            return;
        helper_->mainLoop_.post(lifetime_.guard([this, reply = std::move(reply), work] {
            if (!helper_)
                return reply(std::unexpected{gone});
            if (helper_->mode_ != Mode::stuck)
                reply(work(*helper_));
        }));
    }

    SimulatedHelper* helper_;
    Lifetime lifetime_;
};

SimulatedHelper::SimulatedHelper(MainLoop& mainLoop, Mode mode)
    : mainLoop_{mainLoop}
    , mode_{mode}
{
}

SimulatedHelper::~SimulatedHelper()
{
    for (auto* connection : connections_)
        connection->forgetHelper();
}

void SimulatedHelper::setMode(Mode mode)
{
    if (std::exchange(mode_, mode) == mode)
        return;
    if (!isReachable())
        for (auto* connection : connections_)
            connection->invalidate();
    notify(onChange);
}

HelperConnector SimulatedHelper::connector()
{
    return [this] { return std::make_unique<Connection>(this); };
}

void SimulatedHelper::registerService(std::function<void(std::expected<void, std::string>)> done)
{
    if (mode_ == Mode::notInstalled) {
        mode_ = Mode::awaitingApproval;
        notify(onModeChange);
    }
    answerRegistration(std::move(done));
}

void SimulatedHelper::unregisterService(std::function<void(std::expected<void, std::string>)> done)
{
    if (mode_ != Mode::refusing && mode_ != Mode::notInstalled) {
        setMode(Mode::notInstalled);
        notify(onModeChange);
    }
    answerRegistration(std::move(done));
}

void SimulatedHelper::answerRegistration(std::function<void(std::expected<void, std::string>)> done)
{
    mainLoop_.post(lifetime_.guard([this, done = std::move(done)] {
        if (mode_ == Mode::refusing)
            done(std::unexpected{"le système simulé refuse"});
        else
            done({});
    }));
}

void SimulatedHelper::status(std::function<void(HelperServiceStatus)> answer)
{
    mainLoop_.post(lifetime_.guard([this, answer = std::move(answer)] {
        switch (mode_) {
        case Mode::notInstalled:
            return answer(HelperServiceStatus::notRegistered);
        case Mode::awaitingApproval:
            return answer(HelperServiceStatus::requiresApproval);
        default:
            return answer(HelperServiceStatus::enabled);
        }
    }));
}

void SimulatedHelper::read(std::function<void(Reading)> answer)
{
    mainLoop_.post(lifetime_.guard([this, answer = std::move(answer)] {
        answer({.hasLid = mode_ != Mode::noBuiltInDisplay, .isSignedByOwnTeam = mode_ != Mode::unsignedBuild});
    }));
}

bool SimulatedHelper::isReachable() const
{
    return mode_ == Mode::ready || mode_ == Mode::refusing || mode_ == Mode::outdated || mode_ == Mode::stuck;
}

std::expected<HelperRefusal, HelperUnreachable> SimulatedHelper::change(const std::function<void()>& make)
{
    if (!isReachable())
        return std::unexpected{gone};
    if (mode_ == Mode::refusing)
        return HelperRefusal{"le helper simulé refuse"};
    make();
    return HelperRefusal{};
}

} // namespace vespra
