#include "App/Model/PreferencesStore.h"
#include "Tests/Support/LaunchedApplication.h"
#include "Tests/Support/MockSurfaces.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using testing::Assign;
    using testing::ElementsAre;
    using testing::InSequence;
    using testing::NiceMock;
    using testing::Return;
    using testing::SaveArg;
    namespace fs = std::filesystem;

    class MockNotifications : public UserNotificationCenter {
    public:
        MOCK_METHOD(void, setCategories, (std::vector<NotificationCategory>), (override));
        MOCK_METHOD(void, requestAuthorization, (), (override));
        MOCK_METHOD(void, post, (const UserNotification&), (override));
        MOCK_METHOD(void, removeDelivered, (const std::vector<std::string>&), (override));
    };

    class MockSession : public SessionFollowing {
    public:
        MOCK_METHOD(void, sessionRuns, (bool), (override));
        MOCK_METHOD(void, refresh, (), (override));
    };

    class MockLid : public LidMonitoring {
    public:
        MOCK_METHOD(bool, isClosedWithoutExternalDisplay, (), (const, override));
        MOCK_METHOD(bool, isLidClosed, (), (const, override));
    };

    class AppDelegateTest : public LaunchedApplication {
    protected:
        AppDelegateTest()
        {
            ON_CALL(surfaces, isPanelVisible).WillByDefault(testing::ReturnPointee(&isPanelVisible));
            ON_CALL(surfaces, showPanel).WillByDefault(Assign(&isPanelVisible, true));
            ON_CALL(surfaces, hidePanel).WillByDefault(Assign(&isPanelVisible, false));
            ON_CALL(surfaces, makeStatusItem).WillByDefault(SaveArg<1>(&actions));
        }

        void launchWithAShutLid()
        {
            launch();
            laptop.platform.helper.service->onChange = nullptr; // a system that does not tell
            laptop.set({{"helper", "ready"}, {"lid", "closed"}});
        }

        NiceMock<MockSurfaces> surfaces;
        bool isPanelVisible = false;
        AppSurfaces::StatusItemActions actions;
    };

} // namespace

TEST_F(AppDelegateTest, LaunchesInItsOrder)
{
    const auto support = home / "support";
    auto notifications = std::make_unique<NiceMock<MockNotifications>>();
    auto lid = std::make_unique<NiceMock<MockLid>>();
    auto session = std::make_unique<NiceMock<MockSession>>();
    {
        const InSequence order;
        EXPECT_CALL(*notifications, setCategories).WillOnce([&] {
            EXPECT_TRUE(fs::exists(support / "agent.sock"));
            EXPECT_FALSE(fs::exists(support / "control.sock"));
        });
        EXPECT_CALL(*lid, isClosedWithoutExternalDisplay).WillOnce(Return(true));
        EXPECT_CALL(surfaces, makePanel);
        EXPECT_CALL(*session, sessionRuns(false));
        EXPECT_CALL(surfaces, makeStatusItem);
        EXPECT_CALL(surfaces, makeSettingsWindow);
        EXPECT_CALL(surfaces, showOnboarding);
    }
    laptop.platform.notifications = std::move(notifications);
    laptop.platform.lid = std::move(lid);
    laptop.platform.session = std::move(session);
    connectClaudeElsewhere();
    launch(&surfaces);
    EXPECT_TRUE(coordinator().conditions().lidClosedWithoutExternalDisplay);
    EXPECT_FALSE(model().needsAgentConnection({.mode = SessionMode::agent})) << "the agents are known";
    EXPECT_TRUE(fs::exists(support / "control.sock"));
    EXPECT_EQ(model().closedLid().get(), &delegate->closedLid());
}

TEST_F(AppDelegateTest, ShowsTheOnboardingOnce)
{
    defaults.flags["didFinishOnboarding"] = true;
    EXPECT_CALL(surfaces, showOnboarding).Times(0);
    launch(&surfaces);
}

TEST_F(AppDelegateTest, JoinsTheSurfacesWithTheModel)
{
    {
        const InSequence order;
        EXPECT_CALL(surfaces, showPanel);
        EXPECT_CALL(surfaces, hidePanel);
        EXPECT_CALL(surfaces, showPanel);
        EXPECT_CALL(surfaces, hidePanel);
        EXPECT_CALL(surfaces, showSettings(testing::Eq(std::nullopt)));
        EXPECT_CALL(surfaces, hidePanel);
        EXPECT_CALL(surfaces, showSettings(testing::Optional(SettingsTab::power)));
    }
    launch(&surfaces);
    actions.onToggle();
    notify(model().showPanel); // it is open already
    actions.onToggle();
    notify(model().showPanel);
    actions.onSettings();
    notify(model().showSettings, SettingsTab::power);
}

TEST_F(AppDelegateTest, TheShortcutTogglesASessionAlsoWithoutWindows)
{
    launch();
    const MachineSettings press{{"shortcut", "pressed"}};
    laptop.set(press);
    EXPECT_TRUE(isActive());
    laptop.set(press);
    EXPECT_EQ(lastEnd(), "stoppedByUser");
    auto& shortcut = model().sessionShortcut();
    shortcut.setPaused(true);
    laptop.set(press);
    EXPECT_FALSE(isActive()) << "a window hears it instead";
    shortcut.setPaused(false);
    EXPECT_FALSE(shortcut.record({.shift = true, .key = 'w'})) << "that is how people type";
    EXPECT_EQ(shortcut.keys(), defaultToggleSessionKeys);
    shortcut.clear();
    laptop.set(press);
    EXPECT_FALSE(isActive());
    EXPECT_EQ(PreferencesStore::toggleSessionKeys(&defaults), std::nullopt);
    const KeyCombination others{.control = true, .shift = true, .key = '1'};
    shortcut.record(others);
    EXPECT_EQ(PreferencesStore::toggleSessionKeys(&defaults), others);
    for (const char* foreign : {"", "OFF", "shift+w", "super++w"}) {
        defaults.texts["toggleSessionShortcut"] = foreign;
        EXPECT_EQ(PreferencesStore::toggleSessionKeys(&defaults), defaultToggleSessionKeys) << foreign;
    }
    delegate->willTerminate();
    laptop.set(press);
    EXPECT_FALSE(isActive());
}

TEST_F(AppDelegateTest, TellsTheUserOfWhatTheyDidNotDo)
{
    launch();
    prefer(SessionMode::timer);
    model().start();
    laptop.advance(55min);
    EXPECT_EQ(laptop.shown(), "session.endingSoon");
    ASSERT_TRUE(laptop.machine().respond({"session.endingSoon", "session.extend"}));
    EXPECT_THAT(events, ElementsAre("started", "endingSoon", "extended"));
    EXPECT_EQ(laptop.shown(), "");
    laptop.advance(20min);
    EXPECT_EQ(laptop.shown(), "session.ended");
    model().start();
    model().toggleSession();
    EXPECT_EQ(laptop.shown(), "") << "who stops a session knows";
}

TEST_F(AppDelegateTest, WarnsOfHeatAndSoundsTheAlarmUnlessItIsOff)
{
    launch();
    model().start();
    laptop.set({{"thermal", "serious"}});
    EXPECT_EQ(laptop.shown(), "session.heatWarning");
    EXPECT_EQ(laptop.machine().alarms(), 1);
    model().toggleSession();
    EXPECT_EQ(laptop.shown(), "") << "its session has ended";
    model().setPlaysHeatAlarm(false);
    laptop.set({{"thermal", "nominal"}});
    model().start();
    laptop.set({{"thermal", "serious"}});
    EXPECT_EQ(laptop.machine().alarms(), 1);
}

TEST_F(AppDelegateTest, AnOverheatedClosedMachineStaysAwakeForTheAlarm)
{
    launchWithAShutLid();
    prefer(SessionMode::unlimited, {.closedLid = true});
    model().start();
    laptop.advance(1s);
    ASSERT_TRUE(delegate->closedLid().isApplied());
    EXPECT_FALSE(laptop.machine().state().isScreenOn);
    laptop.set({{"thermal", "critical"}});
    EXPECT_EQ(lastEnd(), "overheating");
    EXPECT_EQ(laptop.machine().alarms(), 1);
    laptop.advance(2.9s);
    EXPECT_TRUE(delegate->closedLid().isApplied());
    laptop.advance(0.2s);
    EXPECT_FALSE(delegate->closedLid().isApplied());
}

TEST_F(AppDelegateTest, AShutMachineStaysAwakeForTheCountdownToItsShutdown)
{
    launchWithAShutLid();
    model().setClosedLid(true);
    laptop.settle();
    EXPECT_TRUE(isReady(coordinator().conditions().helper));
    setSettings([](auto& settings) { settings.agents.endAction = AgentEndAction::shutDown; });
    model().start();
    laptop.advance(1s);
    coordinator().stop(end::AgentsFinished{});
    laptop.advance(50s);
    laptop.machine().withdraw("agents.finished");
    laptop.time.sleep(75s);
    laptop.advance(59s);
    EXPECT_TRUE(delegate->closedLid().isApplied());
    EXPECT_EQ(laptop.shown(), "agents.finished") << "it can be cancelled again";
    model().forcedEndAction().cancel();
    laptop.settle();
    EXPECT_FALSE(delegate->closedLid().isApplied());
    bool slept = false; // which is how a simulated laptop shuts down
    laptop.platform.sleep->onWillSleep = [&] { slept = true; };
    model().forcedEndAction().schedule(AgentEndAction::shutDown, laptop.time.now());
    laptop.advance(61s);
    EXPECT_TRUE(slept);
}

TEST_F(AppDelegateTest, QuittingPutsTheSleepSettingBackAndEndsTheSession)
{
    launch();
    laptop.set({{"helper", "ready"}});
    prefer(SessionMode::unlimited, {.keepsDisplayAwake = true, .closedLid = true});
    model().start();
    laptop.advance(1s);
    ASSERT_TRUE(delegate->closedLid().isApplied());
    delegate->shouldTerminate();
    EXPECT_FALSE(delegate->closedLid().isApplied());
    EXPECT_TRUE(isActive()) << "quitting could still be called off";
    delegate->willTerminate();
    EXPECT_EQ(lastEnd(), "appTerminated");
    EXPECT_EQ(laptop.held(), "");
    EXPECT_FALSE(fs::exists(home / "support" / "control.sock"));
    laptop.advance(1h);
    EXPECT_EQ(laptop.held(), "");
}

TEST_F(AppDelegateTest, CallbacksOfTheSystemOutliveIt)
{
    EXPECT_CALL(surfaces, showPanel).Times(0);
    launch(&surfaces);
    const auto willSleep = laptop.platform.sleep->onWillSleep;
    delegate.reset();
    willSleep();
    actions.onToggle();
    laptop.set({{"shortcut", "pressed"}, {"charger", "off"}, {"thermal", "critical"}});
}

} // namespace vespra
