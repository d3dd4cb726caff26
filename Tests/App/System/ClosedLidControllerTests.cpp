#include "App/System/ClosedLidController.h"

#include "App/System/simulated/SimulatedHelper.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/Courses.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/RecordedLog.h"

#include <map>

namespace vespra {

namespace {

    /// Notes each request and can keep the replies back.
    struct Wire {
        std::string requests;
        bool keepsReplies = false;
        std::vector<std::function<void()>> kept;

        void note(const char* request) { requests += std::string{request} + " "; }
        void deliver()
        {
            keepsReplies = false;
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
            return helper_->restoreSleepAndWait(timeout);
        }

    private:
        template <class Value> HelperReply<Value> noted(const char* request, const HelperReply<Value>& reply)
        {
            wire_.note(request);
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

    struct ClosedLidControllerTest : testing::Test, SystemPower {
        void sleepNow(Done done) override
        {
            wire.note("systemSleeps");
            done({});
        }
        void launch()
        {
            coordinator.stop(end::StoppedByUser{});
            wire = {};
            helper.setMode(SimulatedHelper::Mode::ready);
            const auto connect
                = [this, connect = helper.connector()] { return std::make_unique<WiredConnection>(wire, connect()); };
            controller.emplace(coordinator, ClosedLidEnvironment{helper, connect, helper, *this, time, mainLoop});
            mainLoop.run();
            seen();
        }
        void does(const std::string& word)
        {
            if (const auto action = actions.find(word); action != actions.end())
                action->second();
            else if (const auto mode = fromRawValue<SimulatedHelper::Mode>(word))
                helper.setMode(*mode);
            else // in steps, so that the main loop takes its turns on the way
                for (Seconds left{std::stod(word)}; left > 0s; left -= 500ms) {
                    time.advance(std::min<Seconds>(500ms, left));
                    mainLoop.run();
                }
            mainLoop.run();
        }
        /// The requests, what was logged, and the status as the coordinator knows it.
        std::string seen()
        {
            auto text = std::exchange(wire.requests, {});
            for (const auto& message : std::exchange(log.messages, {}))
                text += "\"" + message + "\" ";
            const auto& known = coordinator.conditions();
            text += "| " + std::string{caseName(known.helper)};
            if (const auto* unsupported = std::get_if<helper::Unsupported>(&known.helper))
                text += " " + std::string{rawValue(unsupported->reason)};
            if (known.lidSleepDisabled)
                text += helper.isSleepDisabled() ? " applied" : " thought applied";
            else if (helper.isSleepDisabled())
                text += " applied unknown";
            return text;
        }

        VirtualTime time;
        ManualMainLoop mainLoop;
        FakePowerSource source;
        FakeThermal thermal;
        SessionCoordinator coordinator{{}, Calendar::current(), {time, time, source, thermal}, helper::NotInstalled{}};
        SimulatedHelper helper{mainLoop};
        Wire wire;
        RecordedLog log;
        std::optional<ClosedLidController> controller;
        const std::map<std::string, std::function<void()>> actions{
            {"start", [this] { EXPECT_TRUE(coordinator.start(plan::Unlimited{}, {.closedLid = true})); }},
            {"stop", [this] { coordinator.stop(end::StoppedByUser{}); }},
            {"install", [this] { controller->install(); }},
            {"remove", [this] { controller->remove(); }},
            {"refresh", [this] { controller->refreshStatus(); }},
            {"letSleep", [this] { controller->performer()(AgentEndAction::letSleep); }},
            {"sleepNow", [this] { controller->performer()(AgentEndAction::sleepNow); }},
            {"shutDown", [this] { controller->performer()(AgentEndAction::shutDown); }},
            {"delayRestore", [this] { controller->setRestoreNotBefore(time.continuousNow() + 3s); }},
            {"keepReplies", [this] { wire.keepsReplies = true; }},
            {"deliver", [this] { wire.deliver(); }},
            {"sleepFor8h", [this] { time.sleep(8h); }},
            {"loseLease", [this] { helper.expireLeases(); }},
            // A system that does not tell what becomes of the component.
            {"silently", [this] { helper.onChange = nullptr; }},
            {"breakOff", [this] { helper.setMode(SimulatedHelper::Mode::failed), does("ready"); }},
            {"hang", [this] { helper.setMode(SimulatedHelper::Mode::failed), does("stuck"); }},
        };
    };

    TEST_F(ClosedLidControllerTest, DoesAndShowsWhatTheCoursesSay)
    {
        playCourses(
            CLOSED_LID_COURSES,
            [this] { launch(); },
            [this](const auto& word) { does(word); },
            [this] { return seen(); });
    }

} // namespace

} // namespace vespra
