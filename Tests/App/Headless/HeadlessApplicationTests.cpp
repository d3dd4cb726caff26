#include "App/Headless/HeadlessApplication.h"

#include "Tests/Support/LaunchedApplication.h"

namespace vespra {

namespace {

    class HeadlessApplicationTest : public LaunchedApplication {
    protected:
        void start(const LaunchOptions& options)
        {
            exitStatus.reset();
            headless.reset();
            make();
            headless.emplace(*delegate, laptop.platform, options, output, [this](int status) { exitStatus = status; });
            headless->start();
            laptop.advance(3s);
        }
        /// A command runs in the session.
        RunningCommands::Command run() { return *model().commands().begin({}, {}); }

        TerminalOutput output;
        std::optional<HeadlessApplication> headless;
        std::optional<int> exitStatus;
    };

} // namespace

TEST_F(HeadlessApplicationTest, ExitsByTheEndOfItsSession)
{
    const StartOptions timer{.mode = SessionMode::timer, .timerDuration = 2h};
    const StartOptions closedLid{.mode = SessionMode::unlimited, .closedLid = true};
    const std::vector onBattery{settingTexts::change("energy.requiresACPower", "off").value(),
        settingTexts::change("energy.batteryTimeLimit", "1h").value(),
        settingTexts::change("agents.graceDelay", "0s").value(),
        settingTexts::change("agents.endAction", "sleepNow").value()};
    struct Row {
        const char* what;
        MachineSettings before;
        StartOptions session;
        std::function<void()> then;
        int exitStatus;
    };
    for (const auto& [what, before, session, then, expected] : std::vector<Row>{
             {"refused", {{"charger", "off"}, {"battery", "20"}}, timer, [] {}, 3},
             {"time", {}, timer, [this] { laptop.advance(2h); }, 0},
             {"battery limit", {{"charger", "off"}}, timer, [this] { laptop.advance(1h); }, 13},
             {"the level", {{"charger", "off"}}, timer, [this] { laptop.set({{"battery", "20"}}); }, 11},
             {"the time with a shut lid",
                 {{"helper", "ready"}},
                 closedLid,
                 [this] {
                     for (auto passed = 0s; passed < 4h; passed += 10s)
                         laptop.advance(10s);
                 },
                 14},
             {"the action that follows the agents",
                 {},
                 {.mode = SessionMode::agent},
                 [this] {
                     agent(AgentSignal::working);
                     agent(AgentSignal::finished);
                     laptop.advance(60s + 29.9s);
                     EXPECT_FALSE(exitStatus) << "it may take half a minute";
                 },
                 0},
             {"heat",
                 {{"helper", "ready"}},
                 closedLid,
                 [this] {
                     laptop.set({{"thermal", "serious"}});
                     laptop.advance(2.9s);
                     EXPECT_FALSE(exitStatus) << "the alarm is to be heard";
                 },
                 15},
             {"the cap", {}, {.mode = SessionMode::agent}, [this] { laptop.advance(12h); }, 16},
         }) {
        SCOPED_TRACE(what);
        laptop.set({{"charger", "on"}, {"battery", "80"}, {"thermal", "nominal"}, {"helper", "notInstalled"}});
        laptop.set(before);
        start({.session = session, .settings = onBattery});
        then();
        laptop.advance(0.2s);
        EXPECT_EQ(exitStatus, expected);
    }
}

TEST_F(HeadlessApplicationTest, TakesSettingsForThisRunAndKeepsNoneOfThem)
{
    start({.settings = std::vector{settingTexts::change("preferences.timerDuration", "2h").value(),
               settingTexts::change("playsHeatAlarm", "off").value()}});
    EXPECT_EQ(coordinator().state().activeSession()->plan, (SessionPlan{plan::Timer{2h}}));
    EXPECT_FALSE(model().playsHeatAlarm());
    EXPECT_TRUE(defaults.texts.empty() && defaults.flags.empty());
}

TEST_F(HeadlessApplicationTest, StaysForACommandThatOutlivesItsSession)
{
    start({.session = {.mode = SessionMode::timer, .timerDuration = 1h}});
    const auto command = run();
    laptop.advance(3h);
    EXPECT_FALSE(exitStatus);
    EXPECT_TRUE(isActive());
    model().commands().end(command);
    laptop.advance(0s);
    EXPECT_EQ(exitStatus, 0);
}

} // namespace vespra
