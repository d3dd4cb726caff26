#pragma once

#include "App/System/HelperConnection.h"
#include "App/System/SystemPower.h"
#include "Core/Lifetime.h"

#include <vector>

namespace vespra {

/// Notes each request and can keep the replies back.
struct Wire {
    std::vector<std::string> requests;
    bool keepsReplies = false;
    std::vector<std::function<void()>> kept;

    void deliver()
    {
        for (const auto& reply : std::exchange(kept, {}))
            reply();
    }
};

class WiredConnection final : public HelperConnection {
public:
    WiredConnection(Wire& wire, std::unique_ptr<HelperConnection> helper)
        : wire_{wire}
        , helper_{std::move(helper)}
    {
        helper_->onInvalidation = [this] { notify(onInvalidation); };
    }
    void protocolVersion(HelperReply<std::int64_t> reply) override
    {
        helper_->protocolVersion(noted("version", reply));
    }
    void enableClosedLid(HelperReply<HelperRefusal> reply) override
    {
        helper_->enableClosedLid(noted("enable", reply));
    }
    void heartbeat(HelperReply<bool> reply) override { helper_->heartbeat(noted("heartbeat", reply)); }
    void restoreSleep(HelperReply<HelperRefusal> reply) override { helper_->restoreSleep(noted("restore", reply)); }
    void sleepNow(HelperReply<HelperRefusal> reply) override { helper_->sleepNow(noted("sleep", reply)); }
    void shutDown(HelperReply<HelperRefusal> reply) override { helper_->shutDown(noted("shutDown", reply)); }
    std::expected<HelperRefusal, HelperUnreachable> restoreSleepAndWait(Seconds timeout) override
    {
        wire_.requests.emplace_back("restoreAndWait");
        return helper_->restoreSleepAndWait(timeout);
    }

private:
    template <class Value> HelperReply<Value> noted(const char* request, const HelperReply<Value>& reply)
    {
        wire_.requests.emplace_back(request);
        return [&wire = wire_, reply](std::expected<Value, HelperUnreachable> answer) {
            if (wire.keepsReplies)
                wire.kept.push_back([reply, answer] { reply(answer); });
            else
                reply(answer);
        };
    }

    Wire& wire_;
    std::unique_ptr<HelperConnection> helper_;
};

class RecordedPower final : public SystemPower {
public:
    void sleepNow(Done done) override
    {
        requests.emplace_back("sleep");
        done({});
    }
    std::vector<std::string> requests;
};

} // namespace vespra
