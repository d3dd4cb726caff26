#include "App/System/ClosedLidController.h"

#include "App/System/simulated/SimulatedHelper.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/App/System/ClosedLidFakes.h"
#include "Tests/Support/FakeMonitors.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Tests/Support/RecordedLog.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using Mode = SimulatedHelper::Mode;
    using testing::ElementsAre;
    using testing::IsEmpty;

    class ClosedLidControllerTest : public testing::Test {
    protected:
        void launch(Mode mode = Mode::ready)
        {
            helper.setMode(mode);
            controller.emplace(coordinator,
                ClosedLidEnvironment{.service = helper,
                    .connect
                    = [this,
                          connect = helper.connector()] { return std::make_unique<WiredConnection>(wire, connect()); },
                    .facts = helper,
                    .power = power,
                    .tasks = time,
                    .mainLoop = mainLoop});
            mainLoop.run();
            wire.requests.clear();
        }
        void startSession()
        {
            ASSERT_TRUE(coordinator.start(plan::Unlimited{}, {.closedLid = true}));
            mainLoop.run();
        }
        void stopSession()
        {
            coordinator.stop(end::StoppedByUser{});
            mainLoop.run();
        }
        /// In steps, so that the main loop takes its turns on the way.
        void pass(Seconds length)
        {
            for (Seconds step = 500ms; length > 0s; length -= step) {
                time.advance(std::min(step, length));
                mainLoop.run();
            }
        }
        HelperStatus shownStatus() const { return coordinator.conditions().helper; }
        /// The override is in force, and the application knows.
        bool isApplied() const
        {
            EXPECT_EQ(coordinator.conditions().lidSleepDisabled, helper.isSleepDisabled());
            return helper.isSleepDisabled();
        }

        VirtualTime time;
        ManualMainLoop mainLoop;
        FakePowerSource source;
        FakeThermal thermal;
        SessionCoordinator coordinator{{}, Calendar::current(), {time, time, source, thermal}, helper::NotInstalled{}};
        SimulatedHelper helper{mainLoop};
        Wire wire;
        RecordedPower power;
        RecordedLog log;
        std::optional<ClosedLidController> controller;
    };

    TEST_F(ClosedLidControllerTest, ShowsWhatTheSystemAndTheComponentSay)
    {
        struct Row {
            Mode mode;
            HelperStatus shown;
            bool talks;
        };
        for (const auto& row : std::vector<Row>{
                 {Mode::ready, helper::Ready{}, true},
                 {Mode::notInstalled, helper::NotInstalled{}, false},
                 {Mode::awaitingApproval, helper::AwaitingApproval{}, false},
                 {Mode::failed, helper::Failed{}, true},
                 {Mode::outdated, helper::Failed{}, true},
                 {Mode::noBuiltInDisplay, helper::Unsupported{ClosedLidUnsupportedReason::noBuiltInDisplay}, false},
                 {Mode::unsignedBuild, helper::Unsupported{ClosedLidUnsupportedReason::unsignedBuild}, false},
             }) {
            SCOPED_TRACE(rawValue(row.mode));
            launch();
            helper.setMode(row.mode);
            controller->refreshStatus();
            mainLoop.run();
            EXPECT_EQ(shownStatus(), row.shown);
            EXPECT_EQ(!wire.requests.empty(), row.talks);
        }
    }

    TEST_F(ClosedLidControllerTest, InstallsAndFollowsTheApproval)
    {
        launch(Mode::notInstalled);
        controller->install();
        mainLoop.run();
        EXPECT_EQ(shownStatus(), HelperStatus{helper::AwaitingApproval{}});
        helper.onChange = nullptr; // a system that does not tell
        helper.setMode(Mode::ready);
        pass(1.5s);
        EXPECT_EQ(shownStatus(), HelperStatus{helper::AwaitingApproval{}});
        pass(0.5s);
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Ready{}});
        pass(1h);
        EXPECT_THAT(wire.requests, ElementsAre("version"));
    }

    TEST_F(ClosedLidControllerTest, DoesWhatIsWantedByTheTimeOfTheReply)
    {
        struct Row {
            const char* what;
            bool startsApplied;
            std::vector<bool> wishes; // on, off ... while the replies are on their way
            bool endsApplied;
        };
        for (const auto& row : std::vector<Row>{
                 {"off before the reply to on", false, {true, false}, false},
                 {"and on again", false, {true, false, true}, true},
                 {"and off again", false, {true, false, true, false}, false},
                 {"on before the reply to off", true, {false, true}, true},
             }) {
            SCOPED_TRACE(row.what);
            launch();
            if (row.startsApplied)
                startSession();
            wire.requests.clear();
            wire.keepsReplies = true;
            for (const bool wish : row.wishes)
                wish ? startSession() : stopSession();
            EXPECT_THAT(wire.requests, ElementsAre(row.startsApplied ? "restore" : "enable"));
            wire.keepsReplies = false;
            wire.deliver();
            pass(12s);
            EXPECT_EQ(isApplied(), row.endsApplied);
            EXPECT_EQ(std::ranges::count(wire.requests, "heartbeat"), row.endsApplied);
            stopSession();
        }
    }

    TEST_F(ClosedLidControllerTest, RenewsEveryTenSecondsAndAppliesAgainAfterALostLease)
    {
        launch();
        startSession();
        pass(9.5s);
        EXPECT_THAT(wire.requests, ElementsAre("enable"));
        pass(10.5s);
        EXPECT_THAT(wire.requests, ElementsAre("enable", "heartbeat", "heartbeat"));
        helper.expireLeases();
        pass(10s);
        EXPECT_TRUE(isApplied());
        EXPECT_THAT(wire.requests, ElementsAre("enable", "heartbeat", "heartbeat", "heartbeat", "enable"));
    }

    TEST_F(ClosedLidControllerTest, NobodyIsSurprisedByAReplyThatIsLateOrNeverComes)
    {
        for (const auto& [meanwhile, sleeps] : std::vector<std::pair<std::function<void()>, bool>>{
                 {[] {}, true},
                 {[&] { time.sleep(8h); }, false},
                 {[&] { time.sleep(8h), wire.deliver(); }, false},
                 {[&] { startSession(); }, false},
             }) {
            launch();
            for (const auto request : {&ClosedLidController::sleepNow, &ClosedLidController::shutDown}) {
                power.requests.clear();
                controller->refreshStatus();
                mainLoop.run();
                wire.keepsReplies = true;
                ((*controller).*request)();
                mainLoop.run();
                meanwhile();
                pass(1min);
                EXPECT_EQ(power.requests.size(), sleeps);
                wire.keepsReplies = false;
                wire.deliver();
                stopSession();
            }
        }
    }

    TEST_F(ClosedLidControllerTest, RenewsWhatARefusedRestoreHasLeftAndIsWantedAgain)
    {
        launch();
        startSession();
        helper.setMode(Mode::refusing);
        mainLoop.run();
        wire.keepsReplies = true;
        stopSession();
        controller->refreshStatus();
        mainLoop.run();
        startSession();
        wire.keepsReplies = false;
        wire.requests.clear();
        wire.deliver(); // the restore is refused, and the component is there
        pass(10s);
        EXPECT_TRUE(isApplied());
        EXPECT_THAT(wire.requests, ElementsAre("heartbeat"));
    }

    TEST_F(ClosedLidControllerTest, WhatIsWantedIsTriedAgainAfter65SecondsAndNothingElse)
    {
        launch(Mode::refusing);
        startSession();
        pass(64.5s);
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Failed{}});
        EXPECT_THAT(wire.requests, ElementsAre("enable"));
        EXPECT_THAT(log.messages, ElementsAre("Activation refusée par le helper : le helper simulé refuse"));
        helper.onChange = nullptr; // a system that does not tell
        helper.setMode(Mode::ready);
        pass(0.5s);
        EXPECT_THAT(std::exchange(wire.requests, {}), ElementsAre("enable", "version", "enable"));
        EXPECT_TRUE(isApplied());
        controller->remove();
        mainLoop.run();
        EXPECT_EQ(shownStatus(), HelperStatus{helper::NotInstalled{}});
        helper.setMode(Mode::ready);
        pass(65s);
        EXPECT_TRUE(isApplied());
        helper.setMode(Mode::failed);
        mainLoop.run();
        stopSession();
        pass(65s); // the try that was under way
        wire.requests.clear();
        pass(1h);
        EXPECT_THAT(wire.requests, IsEmpty());
    }

    TEST_F(ClosedLidControllerTest, ARefusedRestoreIsSentAgainAtTheNextRefresh)
    {
        launch();
        startSession();
        helper.setMode(Mode::refusing);
        mainLoop.run();
        stopSession();
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Failed{}});
        EXPECT_TRUE(isApplied());
        EXPECT_THAT(log.messages, ElementsAre("Restauration refusée par le helper : le helper simulé refuse"));
        helper.setMode(Mode::ready);
        mainLoop.run();
        EXPECT_FALSE(isApplied());
    }

    TEST_F(ClosedLidControllerTest, ASilentComponentCountsAsUnreachable)
    {
        launch();
        startSession();
        helper.onChange = nullptr; // a component does not tell that it hangs
        helper.setMode(Mode::stuck);
        pass(24.5s); // the lease's end, to a component that has not heard of the heartbeat
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Ready{}});
        pass(0.5s);
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Failed{}});
        EXPECT_FALSE(helper.isSleepDisabled()) << "breaking off the connection lets go";
        EXPECT_THAT(log.messages, testing::Contains("Helper injoignable : aucune réponse dans le délai"));
    }

    TEST_F(ClosedLidControllerTest, WhatIsLostIsNotShownUntilTheNextAnswer)
    {
        launch();
        startSession();
        helper.onChange = nullptr;
        helper.setMode(Mode::failed);
        helper.setMode(Mode::stuck);
        mainLoop.run();
        EXPECT_FALSE(coordinator.conditions().lidSleepDisabled);
    }

    TEST_F(ClosedLidControllerTest, TakesANewConnectionAfterOneBrokeOff)
    {
        launch();
        startSession();
        helper.onChange = nullptr;
        helper.setMode(Mode::failed);
        helper.setMode(Mode::ready);
        mainLoop.run();
        EXPECT_TRUE(isApplied());
        EXPECT_THAT(wire.requests, ElementsAre("enable", "version", "enable"));
        helper.setMode(Mode::failed);
        helper.setMode(Mode::ready);
        mainLoop.run();
        pass(64.5s); // one that breaks off again and again is left alone
        EXPECT_FALSE(isApplied());
        EXPECT_EQ(shownStatus(), HelperStatus{helper::Failed{}});
        pass(0.5s);
        EXPECT_TRUE(isApplied());
    }

    TEST_F(ClosedLidControllerTest, ASessionThatStartsDuringTheDelayKeepsTheOverride)
    {
        launch();
        startSession();
        controller->setRestoreNotBefore(time.continuousNow() + 3s);
        stopSession();
        pass(1s);
        startSession();
        pass(25s);
        EXPECT_TRUE(isApplied());
        EXPECT_THAT(wire.requests, ElementsAre("enable", "enable", "heartbeat", "heartbeat"));
    }

    TEST_F(ClosedLidControllerTest, TheOverrideStaysUntilTheShutdownIsAnswered)
    {
        launch();
        startSession();
        wire.keepsReplies = true;
        controller->shutDown();
        stopSession();
        EXPECT_THAT(wire.requests, ElementsAre("enable", "shutDown"));
        wire.deliver();
        mainLoop.run();
        EXPECT_THAT(wire.requests, ElementsAre("enable", "shutDown", "restore"));
    }

    TEST_F(ClosedLidControllerTest, SleepAndShutdownFallBack)
    {
        using enum AgentEndAction;
        using Requests = std::vector<std::string>;
        struct Row {
            const char* what;
            Mode mode;
            AgentEndAction action;
            Requests ofHelper, ofSystem;
        };
        for (const auto& row : std::vector<Row>{
                 {"nothing to do", Mode::ready, letSleep, {}, {}},
                 {"sleep", Mode::ready, sleepNow, {"sleep"}, {}},
                 {"refused sleep", Mode::refusing, sleepNow, {"sleep"}, {}},
                 {"sleep without component", Mode::notInstalled, sleepNow, {}, {"sleep"}},
                 {"shutdown", Mode::ready, shutDown, {"shutDown"}, {}},
                 {"refused shutdown", Mode::refusing, shutDown, {"shutDown", "sleep"}, {}},
                 {"shutdown without component", Mode::failed, shutDown, {}, {"sleep"}},
             }) {
            SCOPED_TRACE(row.what);
            launch(row.mode);
            power.requests.clear();
            controller->performer()(row.action);
            mainLoop.run();
            EXPECT_EQ(wire.requests, row.ofHelper);
            EXPECT_EQ(power.requests, row.ofSystem);
        }
    }

} // namespace

} // namespace vespra
