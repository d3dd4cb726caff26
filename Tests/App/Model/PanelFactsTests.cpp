#include "App/Model/PanelFacts.h"

#include "App/Wording/Format.h"
#include "App/Wording/SessionWording.h"
#include "Tests/Support/LaunchedApplication.h"

namespace vespra {

namespace {

    class PanelFacts : public LaunchedApplication {
    protected:
        PanelFacts()
        {
            qputenv("LC_ALL", "C"); // before the user's format is made
            launch();
            setSettings([](auto& settings) { settings = {}; });
        }
    };

    ActiveSession session(const SessionPlan& plan, Instant start, std::optional<Instant> end)
    {
        return {.plan = plan, .startedAt = start, .endsAt = end};
    }

} // namespace

TEST_F(PanelFacts, SayWhyAStartIsBlockedForAsLongAsItIs)
{
    EXPECT_FALSE(panelFacts::startBlocker(model()));
    for (const auto& [state, closedLid, symbol] : std::vector<std::tuple<MachineSettings, bool, std::string_view>>{
             {{{"charger", "off"}, {"battery", "60"}}, false, "powerplug"},
             {{{"battery", "10"}, {"charger", "off"}}, false, "battery.25percent"},
             {{{"thermal", "serious"}, {"helper", "ready"}}, true, "thermometer.high"},
         }) {
        SCOPED_TRACE(symbol);
        setSettings([&](auto& settings) { settings.energy.requiresACPower = symbol == "powerplug"; });
        prefer(SessionMode::timer, {.closedLid = closedLid});
        laptop.set(state);
        const auto blocker = panelFacts::startBlocker(model());
        ASSERT_TRUE(blocker);
        EXPECT_EQ(blocker->symbol, symbol);
        EXPECT_EQ(blocker->text, message(*coordinator().refusal(model().preferences().options)));
        laptop.set({{"charger", "on"}, {"battery", "80"}, {"thermal", "nominal"}});
        EXPECT_FALSE(panelFacts::startBlocker(model()));
    }
    model().start();
    EXPECT_EQ(panelFacts::startBlocker(model())->symbol, "clock");
}

TEST_F(PanelFacts, SumUpWhatWatchesTheSession)
{
    EXPECT_FALSE(panelFacts::guardrailSummary(model()));
    model().start();
    setSettings([](auto& settings) { settings.energy = {.requiresACPower = false, .stopsOnLowBattery = false}; });
    EXPECT_FALSE(panelFacts::guardrailSummary(model()));
    setSettings([](auto& settings) {
        settings.energy = {.requiresACPower = false, .lowBatteryThreshold = 20, .batteryTimeLimit = 90min};
    });
    laptop.set({{"charger", "off"}});
    EXPECT_EQ(panelFacts::guardrailSummary(model()), "Stops at 20% battery · 1h 30m max on battery");
}

TEST_F(PanelFacts, ShowTheEndByAGuardrailUntilItIsDismissed)
{
    const auto endByCharger = [this] {
        laptop.set({{"charger", "on"}});
        model().start();
        laptop.set({{"charger", "off"}});
    };
    endByCharger();
    ASSERT_TRUE(panelFacts::visibleGuardrailEnd(model()));
    model().dismissEnd();
    EXPECT_FALSE(panelFacts::visibleGuardrailEnd(model()));
    laptop.advance(1s);
    endByCharger();
    EXPECT_TRUE(panelFacts::visibleGuardrailEnd(model())) << "another end";
    laptop.set({{"charger", "on"}});
    model().start();
    EXPECT_FALSE(panelFacts::visibleGuardrailEnd(model())) << "a session runs";
    model().toggleSession();
    EXPECT_FALSE(panelFacts::visibleGuardrailEnd(model())) << "no guardrail's";
}

TEST_F(PanelFacts, SetTheLengthInTheModesThatHaveOne)
{
    struct Row {
        SessionPreferences set;
        const char *label, *value, *spoken;
        std::optional<SessionPreferences> previous, next;
    };
    const auto timer = [](Seconds length) { return SessionPreferences{.timerDuration = length}; };
    const auto until = [](TimeOfDay time) { return SessionPreferences{.mode = SessionMode::until, .untilTime = time}; };
    for (const auto& row : std::vector<Row>{
             {timer(1min), "Duration", "1m", "1 minute", {}, timer(2min)},
             {timer(100s), "Duration", "1m", "2 minutes", timer(1min), timer(2min)},
             {timer(90min), "Duration", "1h 30m", "1 hour, 30 minutes", timer(75min), timer(105min)},
             {timer(24h), "Duration", "24h", "24 hours", timer(23h), {}},
             {until({0, 0}), "Ends at", "00:00", "00:00", until({23, 45}), until({0, 15})},
             {until({10, 7}), "Ends at", "10:07", "10:07", until({10, 0}), until({10, 15})},
         }) {
        SCOPED_TRACE(row.value);
        model().setPreferences(row.set);
        const auto setting = panelFacts::modeSetting(model());
        ASSERT_TRUE(setting);
        EXPECT_EQ(setting->label, row.label);
        EXPECT_EQ(setting->value, row.value);
        EXPECT_EQ(setting->spokenValue, row.spoken);
        EXPECT_EQ(setting->decrement, row.previous);
        EXPECT_EQ(setting->increment, row.next);
    }
    for (const auto mode : {SessionMode::unlimited, SessionMode::agent}) {
        prefer(mode);
        EXPECT_FALSE(panelFacts::modeSetting(model()));
    }
}

TEST_F(PanelFacts, ClockCountsDownToAnEndThatIsPlannedElseUp)
{
    const Instant start{}, end = start + 2h;
    const auto until = "Until " + timeText(end), since = timeText(start);
    const auto timer = session(plan::Timer{2h}, start, end);
    const auto capped = session(plan::Agent{8h}, start, start + 8h);
    const auto unlimited = session(plan::Unlimited{}, start, {});
    struct Row {
        ActiveSession session;
        Seconds at;
        panelFacts::SessionClock clock;
    };
    for (const auto& row : std::vector<Row>{
             {timer, 0s, {"2:00:00", until, "Session active, 2 hours left", 1.0}},
             {timer, 3599.2s, {"1:00:01", until, "Session active, 1 hour, 1 minute left", 3600.8 / 7200}},
             {timer, 7140.5s, {"1:00", until, "Session active, 1 minute left", 59.5 / 7200}},
             {timer, 2h + 9s, {"0:00", until, "Session active, 0 minutes left", 0.0}},
             {timer, -1h, {"3:00:00", until, "Session active, 3 hours left", 1.0}},
             {session(plan::Until{{2, 0}}, end, end),
                 0s,
                 {"2:00:00", until, "Session active, 2 hours left", 1.0}}, // no division by nothing
             {unlimited, 59.9s, {"0:59", "Unlimited · since " + since, "Session active since " + since, {}}},
             {capped, 1h, {"1:00:00", "Agent · since " + since, "Session active since " + since, {}}},
         }) {
        const auto clock = panelFacts::sessionClock(row.session, start + row.at);
        EXPECT_EQ(clock.clock, row.clock.clock);
        EXPECT_EQ(clock.subtitle, row.clock.subtitle);
        EXPECT_EQ(clock.spoken, row.clock.spoken);
        EXPECT_EQ(clock.remainingFraction.has_value(), row.clock.remainingFraction.has_value());
        EXPECT_NEAR(clock.remainingFraction.value_or(0), row.clock.remainingFraction.value_or(0), 1e-9) << clock.clock;
    }
}

TEST_F(PanelFacts, TimeLeftStandsInTheMenuBarWhileItIsCountedAndWanted)
{
    std::string seen;
    const ObservationLoop item{
        laptop.mainLoop, [&] { seen += panelFacts::remainingTimeTitle(model()).value_or("") + "|"; }};
    model().start();
    laptop.settle();
    model().setShowsRemainingTimeInMenuBar(true);
    laptop.settle();
    laptop.advance(1.1s);
    model().setShowsRemainingTimeInMenuBar(false);
    laptop.advance(1min);
    EXPECT_EQ(seen, "|| 1:00:00| 59:59||") << "it wakes up only while it is shown";
    coordinator().stop(end::StoppedByUser{});
    model().setShowsRemainingTimeInMenuBar(true);
    prefer(SessionMode::unlimited);
    model().start();
    EXPECT_FALSE(panelFacts::remainingTimeTitle(model()));
}

} // namespace vespra
