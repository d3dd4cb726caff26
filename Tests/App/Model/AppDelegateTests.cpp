#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsSupersetOf;
    namespace fs = std::filesystem;

    using Journal = std::vector<std::string>;

    class RecordingSurfaces final : public AppSurfaces {
    public:
        explicit RecordingSurfaces(Journal& journal)
            : journal_{journal}
        {
        }
        void activate() override { note("activate"); }
        void makePanel(AppModel&) override { note("panel"); }
        bool isPanelVisible() const override { return isPanelVisible_; }
        void showPanel() override
        {
            isPanelVisible_ = true;
            note("showPanel");
        }
        void hidePanel() override
        {
            isPanelVisible_ = false;
            note("hidePanel");
        }
        bool hasStatusItem() const override { return true; }
        void makeStatusItem(AppModel&, StatusItemActions all) override
        {
            actions = std::move(all);
            note("statusItem");
        }
        void makeSettingsWindow(AppModel&) override { note("settingsWindow"); }
        void showSettings(std::optional<SettingsTab> tab) override
        {
            note("showSettings " + (tab ? std::string{rawValue(*tab)} : "-"));
        }
        void showOnboarding(AppModel&) override { note("onboarding"); }
        void registerShortcut(std::function<void()> onKeyUp) override
        {
            shortcut = std::move(onKeyUp);
            note("shortcut");
        }

        StatusItemActions actions;
        std::function<void()> shortcut;

    private:
        void note(std::string entry) { journal_.push_back(std::move(entry)); }

        Journal& journal_;
        bool isPanelVisible_ = false;
    };

    /// Notes that the notifier has been made, and what stood in the support folder by then.
    class RecordingNotifications final : public UserNotificationCenter {
    public:
        RecordingNotifications(Journal& journal, fs::path support)
            : journal_{journal}
            , support_{std::move(support)}
        {
        }
        void setCategories(std::vector<NotificationCategory>) override
        {
            journal_.emplace_back(fs::exists(support_ / "agent.sock") ? "agent.sock" : "no socket");
            journal_.emplace_back(fs::exists(support_ / "control.sock") ? "control.sock" : "notifier");
        }
        void requestAuthorization() override { }
        void post(const UserNotification& notification) override { journal_.push_back(notification.identifier); }
        void removeDelivered(const std::vector<std::string>&) override { }

    private:
        Journal& journal_;
        fs::path support_;
    };

    class RecordingSession final : public SessionFollowing {
    public:
        explicit RecordingSession(Journal& journal)
            : journal_{journal}
        {
        }
        void sessionRuns(bool runs) override { journal_.emplace_back(runs ? "session runs" : "no session"); }
        void refresh() override { }

    private:
        Journal& journal_;
    };

    class RecordingLid final : public LidMonitoring {
    public:
        explicit RecordingLid(Journal& journal)
            : journal_{journal}
        {
        }
        bool isClosedWithoutExternalDisplay() const override
        {
            journal_.emplace_back("lid");
            return true;
        }
        bool isLidClosed() const override { return true; }

    private:
        Journal& journal_;
    };

    class AppDelegateTest : public LaunchedApplication {
    protected:
        Journal journal;
        RecordingSurfaces surfaces{journal};
    };

} // namespace

TEST_F(AppDelegateTest, LaunchesInItsOrder)
{
    laptop.platform.notifications = std::make_unique<RecordingNotifications>(journal, home / "support");
    laptop.platform.session = std::make_unique<RecordingSession>(journal);
    laptop.platform.lid = std::make_unique<RecordingLid>(journal);
    launch(&surfaces);
    EXPECT_THAT(journal,
        ElementsAre("agent.sock",
            "notifier",
            "lid",
            "panel",
            "no session",
            "statusItem",
            "settingsWindow",
            "onboarding",
            "shortcut"));
    EXPECT_TRUE(coordinator().conditions().lidClosedWithoutExternalDisplay);
    EXPECT_TRUE(fs::exists(home / "support" / "control.sock"));
    EXPECT_EQ(model().closedLid, &delegate->closedLid());
}

TEST_F(AppDelegateTest, KnowsTheAgentsFromLaunchOn)
{
    fs::create_directories(home / ".claude");
    const AgentIntegration before{home.path(), home / "support"};
    ASSERT_TRUE(before.hookFile(AgentKind::claudeCode).connect(laptop.time.now()));
    launch();
    EXPECT_EQ(
        model().agentIntegration().connections().at(AgentKind::claudeCode), HookSettingsFile::Connection::connected);
}

TEST_F(AppDelegateTest, ShowsTheOnboardingOnce)
{
    defaults.flags["didFinishOnboarding"] = true;
    launch(&surfaces);
    EXPECT_THAT(journal, testing::Not(testing::Contains("onboarding")));
}

TEST_F(AppDelegateTest, JoinsTheSurfacesWithTheModel)
{
    launch(&surfaces);
    journal.clear();
    surfaces.actions.onToggle();
    notify(model().showPanel); // it is open already
    surfaces.actions.onToggle();
    notify(model().showPanel);
    surfaces.actions.onSettings();
    notify(model().showSettings, SettingsTab::power);
    EXPECT_THAT(journal,
        ElementsAre(
            "showPanel", "hidePanel", "showPanel", "hidePanel", "showSettings -", "hidePanel", "showSettings power"));
    surfaces.shortcut();
    EXPECT_TRUE(isActive());
    surfaces.shortcut();
    EXPECT_EQ(lastEnd(), "stoppedByUser");
}

TEST_F(AppDelegateTest, HoldsTheMachineAwakeExactlyWhileASessionRuns)
{
    launch();
    model().start();
    EXPECT_EQ(laptop.held(), "") << "not before the next turn";
    laptop.settle();
    EXPECT_EQ(laptop.held(), "activity PreventUserIdleSystemSleep");
    laptop.advance(1h);
    EXPECT_EQ(lastEnd(), "timeElapsed");
    EXPECT_EQ(laptop.held(), "");
}

TEST_F(AppDelegateTest, ReadingsEndTheSession)
{
    launch();
    const auto endBy = [this](const MachineSettings& settings) {
        laptop.set(
            {{"charger", "on"}, {"battery", "80"}, {"lid", "open"}, {"thermal", "nominal"}, {"helper", "ready"}});
        prefer(SessionMode::unlimited, {.closedLid = true});
        model().start();
        laptop.settle();
        laptop.set(settings);
        return lastEnd();
    };
    EXPECT_EQ(endBy({{"charger", "off"}}), "chargerDisconnected");
    EXPECT_EQ(endBy({{"sleep", "now"}}), "systemSleep");
    EXPECT_EQ(endBy({{"lid", "closed"}, {"thermal", "serious"}}), "overheating");
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
    launch();
    laptop.set({{"helper", "ready"}, {"lid", "closed"}});
    prefer(SessionMode::unlimited, {.closedLid = true});
    model().start();
    laptop.advance(1s);
    ASSERT_TRUE(delegate->closedLid().isApplied());
    laptop.set({{"thermal", "critical"}});
    EXPECT_EQ(lastEnd(), "overheating");
    EXPECT_EQ(laptop.machine().alarms(), 1);
    laptop.advance(2.9s);
    EXPECT_TRUE(delegate->closedLid().isApplied());
    laptop.advance(0.2s);
    EXPECT_FALSE(delegate->closedLid().isApplied());
}

TEST_F(AppDelegateTest, ShutsDownOnlyThroughTheComponentElseSleeps)
{
    for (const auto* helper : {"ready", "notInstalled"}) {
        SCOPED_TRACE(helper);
        launch();
        laptop.set({{"helper", helper}});
        laptop.advance(3s);
        bool slept = false;
        laptop.platform.sleep->onWillSleep = [&] { slept = true; };
        model().forcedEndAction().schedule(AgentEndAction::shutDown, laptop.time.now());
        laptop.advance(59s);
        EXPECT_FALSE(slept);
        laptop.advance(2s);
        EXPECT_TRUE(slept);
        delegate.reset();
    }
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
    launch(&surfaces);
    const auto willSleep = laptop.platform.sleep->onWillSleep;
    const auto onToggle = surfaces.actions.onToggle;
    delegate.reset();
    journal.clear();
    willSleep();
    onToggle();
    surfaces.shortcut();
    laptop.set({{"charger", "off"}, {"thermal", "critical"}});
    EXPECT_THAT(journal, ElementsAre());
}

} // namespace vespra
