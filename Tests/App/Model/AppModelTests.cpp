#include "App/Model/PreferencesStore.h"
#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    class AppModelTest : public LaunchedApplication {
    protected:
        void SetUp() override
        {
            launch();
            model().showPanel = [this] { ++panelsShown; };
        }
        void runAgentSession(bool skipsForcedAction = false)
        {
            connectClaude();
            prefer(SessionMode::agent);
            model().start();
            if (skipsForcedAction)
                model().setSkipsForcedActionThisSession(true);
            agent(AgentSignal::working);
            agent(AgentSignal::finished);
        }

        int panelsShown = 0;
    };

} // namespace

TEST_F(AppModelTest, ShowsThePanelWhenAToggleIsBlocked)
{
    laptop.set({{"charger", "off"}});
    model().toggleSession();
    EXPECT_FALSE(isActive());
    EXPECT_EQ(panelsShown, 1);
    prefer(SessionMode::agent);
    laptop.set({{"charger", "on"}});
    model().toggleSession();
    EXPECT_FALSE(isActive()) << "no agent is connected";
    EXPECT_EQ(panelsShown, 2);
    connectClaude();
    model().toggleSession();
    EXPECT_TRUE(isActive());
    EXPECT_EQ(panelsShown, 2);
}

TEST_F(AppModelTest, HasAnEndConditionExactlyWhileAnAgentSessionRuns)
{
    connectClaude();
    model().start();
    prefer(SessionMode::agent);
    model().start();
    EXPECT_EQ(model().agentCondition(), nullptr) << "the timer still runs";
    coordinator().stop(end::StoppedByUser{});
    model().start();
    const auto condition = model().agentCondition();
    EXPECT_NE(condition, nullptr);
    prefer(SessionMode::timer);
    model().start();
    EXPECT_EQ(model().agentCondition(), condition) << "refused: the agent session goes on";
    coordinator().stop(end::StoppedByUser{});
    EXPECT_EQ(model().agentCondition(), nullptr);
}

TEST_F(AppModelTest, RunsHotOnlyWhileAHotSessionGoesOn)
{
    for (const auto& [hasSession, level, isHot] : std::vector<std::tuple<bool, const char*, bool>>{
             {false, "critical", false}, {true, "fair", false}, {true, "serious", true}, {true, "critical", true}}) {
        laptop.set({{"thermal", level}});
        if (hasSession)
            model().start();
        EXPECT_EQ(model().isRunningHot(), isHot) << level;
    }
}

TEST_F(AppModelTest, WhatChangesASettingKeepsNothingThatWasForThisRunOnly)
{
    setSettings([](auto& settings) { settings.agentSafetyCap = 3h; });
    auto forThisRun = coordinator().settings();
    forThisRun.energy.requiresACPower = false;
    forThisRun.agents.graceDelay = 1min;
    coordinator().setSettings(forThisRun);
    setSettings([](auto& settings) { settings.agents.endAction = AgentEndAction::sleepNow; });
    EXPECT_EQ(coordinator().settings().agents.graceDelay, 1min);
    EXPECT_EQ(PreferencesStore::loadSettings(&defaults),
        (SessionSettings{.agentSafetyCap = 3h, .agents = {.endAction = AgentEndAction::sleepNow}}));
    setSettings([](auto& settings) { settings.agents.graceDelay = 1min; });
    EXPECT_EQ(PreferencesStore::loadSettings(&defaults).agents.graceDelay, 1min) << "named, though it was so already";
}

TEST_F(AppModelTest, KeepsAwakeForACommandUntilItHasEndedOrAnEndThatCountsForAll)
{
    // What comes before: a session of the user's, or none; then the command begins, and something ends the session.
    struct Row {
        const char* what;
        std::optional<SessionMode> users;
        std::function<void()> thenEnd;
        bool goesOn;
    };
    setSettings([](auto& settings) { settings.agents = {.graceDelay = 0s, .endAction = AgentEndAction::sleepNow}; });
    const auto agentsFinish = [this] {
        agent(AgentSignal::working);
        agent(AgentSignal::finished);
    };
    bool wasCalledOff = false;
    model().forcedEndAction().onCancel = [&] { wasCalledOff = true; };
    connectClaude();
    for (const auto& [what, users, thenEnd, goesOn] : std::vector<Row>{
             {"time", SessionMode::timer, [this] { laptop.advance(1h); }, true},
             {"agents", SessionMode::agent, agentsFinish, true},
             {"the cap of an agent session", SessionMode::agent, [this] { laptop.advance(12h); }, false},
             {"the user", SessionMode::timer, [this] { model().toggleSession(); }, false},
             {"a guardrail", SessionMode::timer, [this] { laptop.set({{"charger", "off"}}); }, false},
             {"the system's sleep", SessionMode::timer, [this] { laptop.platform.sleep->onWillSleep(); }, false},
             {"a guardrail, of its own", {}, [this] { laptop.set({{"charger", "off"}}); }, false},
             {"the user, of its own", {}, [this] { model().toggleSession(); }, false},
         }) {
        SCOPED_TRACE(what);
        laptop.set({{"charger", "on"}});
        if (users) {
            prefer(*users);
            model().start();
        }
        int dropped = 0;
        const auto command = model().commands().begin({}, [&] { ++dropped; });
        ASSERT_TRUE(command);
        thenEnd();
        EXPECT_EQ(isActive(), goesOn);
        EXPECT_EQ(laptop.held(), goesOn ? "activity PreventUserIdleSystemSleep" : "");
        EXPECT_EQ(dropped, goesOn ? 0 : 1);
        EXPECT_TRUE(!goesOn || laptop.shown().empty()) << "that the computer can go to sleep again does not hold";
        laptop.set({{"charger", "on"}});
        if (!goesOn)
            model().start(); // one of the user's, in which the command has no part
        laptop.advance(24h);
        EXPECT_EQ(isActive(), goesOn);
        model().commands().end(*command);
        EXPECT_FALSE(isActive());
    }
    EXPECT_FALSE(wasCalledOff) << "what would cut a command off is not even announced";
}

TEST_F(AppModelTest, CommandsShareASessionAndItsOptionsGoWithTheLastThatAskedForThem)
{
    auto& commands = model().commands();
    const auto begin = [&](RunningCommands::Wishes wishes) { return *commands.begin(wishes, {}); };
    const RunningCommands::Wishes display{.keepsDisplayAwake = true, .closedLid = {}};
    for (const bool isUsers : {false, true}) {
        SCOPED_TRACE(isUsers);
        if (isUsers)
            model().start();
        const auto plain = begin({}), first = begin(display), second = begin(display);
        EXPECT_TRUE(model().keepsDisplayAwake());
        commands.end(first);
        EXPECT_TRUE(model().keepsDisplayAwake());
        if (isUsers)
            laptop.advance(1h);
        EXPECT_TRUE(model().keepsDisplayAwake()) << "also in the session that follows";
        commands.end(second);
        EXPECT_FALSE(model().keepsDisplayAwake());
        const auto third = begin(display);
        model().setKeepsDisplayAwake(true);
        commands.end(third);
        EXPECT_TRUE(model().keepsDisplayAwake()) << "the user's choice now";
        model().setKeepsDisplayAwake(false);
        EXPECT_TRUE(isActive());
        commands.end(plain);
        EXPECT_FALSE(isActive());
    }
    const auto stopped = begin(display);
    coordinator().stop(end::StoppedByUser{});
    model().setKeepsDisplayAwake(true);
    model().start();
    commands.end(stopped);
    commands.end(begin({}));
    EXPECT_TRUE(isActive() && model().keepsDisplayAwake()) << "the user's, unlike the one that was stopped";
    coordinator().stop(end::StoppedByUser{});
    model().setKeepsDisplayAwake(false);
    laptop.set({{"helper", "ready"}, {"thermal", "serious"}});
    const RunningCommands::Wishes lid{.keepsDisplayAwake = true, .closedLid = true};
    EXPECT_EQ(commands.begin(lid, {}).error(), StartRefusal{refusal::TooHot{}});
    model().start();
    EXPECT_EQ(commands.begin(lid, {}).error(), StartRefusal{refusal::TooHot{}});
    EXPECT_FALSE(model().keepsDisplayAwake() || model().isClosedLidOn() || commands.isAnyRunning());
    laptop.set({{"thermal", "nominal"}});
    const auto command = begin(lid);
    EXPECT_TRUE(model().isClosedLidOn());
    commands.end(command);
    EXPECT_FALSE(model().isClosedLidOn());
    EXPECT_TRUE(isActive()) << "the user's";
}

TEST_F(AppModelTest, CommandsTakeBackNothingThatTheUserPrefers)
{
    laptop.set({{"helper", "ready"}});
    constexpr RunningCommands::Wishes both{.keepsDisplayAwake = true, .closedLid = true};
    constexpr SessionOptions on{.keepsDisplayAwake = true, .closedLid = true};
    const auto begin = [this](const RunningCommands::Wishes& wishes) { return *model().commands().begin(wishes, {}); };
    const auto options = [this] { return coordinator().state().activeSession()->options; };
    for (const SessionOptions preferred : {SessionOptions{}, on}) {
        prefer(SessionMode::timer, preferred);
        const auto wishful = begin(both), plain = begin({});
        EXPECT_EQ(options(), on);
        model().commands().end(wishful);
        EXPECT_EQ(options(), preferred);
        model().commands().end(plain);
        const auto alone = begin({});
        EXPECT_EQ(options(), preferred);
        model().commands().end(alone);
    }
    prefer(SessionMode::timer);
    begin(both);
    coordinator().stop(end::StoppedByUser{});
    prefer(SessionMode::timer, on);
    model().start();
    model().commands().end(begin({}));
    EXPECT_EQ(options(), on) << "in the user's next session";
}

TEST_F(AppModelTest, WhatFollowsTheAgentsIsSkippedOnceOrCalledOff)
{
    setSettings([](auto& settings) { settings.agents = {.graceDelay = 0s, .endAction = AgentEndAction::sleepNow}; });
    runAgentSession(/*skipsForcedAction=*/true);
    ASSERT_EQ(lastEnd(), "agentsFinished");
    EXPECT_FALSE(model().forcedEndAction().pending());
    EXPECT_EQ(laptop.machine().notifications().back().actions.size(), 0U) << "nothing to cancel";

    runAgentSession();
    ASSERT_TRUE(model().forcedEndAction().pending()) << "it was skipped for one session";
    EXPECT_EQ(laptop.shown(), "agents.finished");
    ASSERT_TRUE(laptop.machine().respond({"agents.finished", "agents.cancelForcedAction"}));
    EXPECT_FALSE(model().forcedEndAction().pending());
    EXPECT_EQ(laptop.shown(), "");

    runAgentSession();
    model().start();
    EXPECT_FALSE(model().forcedEndAction().pending()) << "a new session calls it off";
}

} // namespace vespra
