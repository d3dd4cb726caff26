#include "Core/Session/SessionMachine.h"

#include "Core/Session/Guardrails.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

using namespace vespra;

// What a session does in the course of time is in Tests/Scenarios.

namespace {

const auto start = Instant::fromISO8601("2026-01-01T12:00:00Z").value();
const auto utc = Calendar::inZone("UTC").value();
constexpr SessionOptions lidOpen{}, lidClosed{.closedLid = true};
constexpr auto cool = ThermalLevel::nominal, hot = ThermalLevel::serious, critical = ThermalLevel::critical;

SessionConditions on(PowerSnapshot power, ThermalLevel thermal = cool)
{
    return {.power = power, .thermal = thermal, .helper = helper::Ready{}};
}

TEST(Violation, FirstRuleThatHoldsWins)
{
    auto heedless = roaming(), onlyClosed = SessionSettings{}, onlyOpen = SessionSettings{};
    heedless.energy.stopsOnLowBattery = false;
    onlyClosed.closedLid.continuesOnBattery = true;
    onlyOpen.energy.requiresACPower = false;
    const blocker::ChargerRequired chargerRequired;
    struct Row {
        const char* rule;
        bool engaged;
        PowerSnapshot power;
        ThermalLevel thermal;
        SessionSettings settings;
        std::optional<Violation> expected;
    };
    for (const auto& row : std::vector<Row>{
             {"heat stops an engaged session first", true, battery(5), hot, {}, blocker::TooHot{}},
             {"fair is not hot", true, charger(80), ThermalLevel::fair, {}, {}},
             {"heat alone never stops an open lid", false, charger(80), critical, {}, {}},
             {"a low level on the charger is fine", false, charger(5), cool, {}, {}},
             {"the charger is required by default", false, battery(80), cool, {}, chargerRequired},
             {"also with the lid closed", true, battery(80), cool, {}, chargerRequired},
             {"each lid has its own rule: open", false, battery(80), cool, onlyClosed, chargerRequired},
             {"each lid has its own rule: closed", true, battery(80), cool, onlyOpen, chargerRequired},
             {"the threshold itself is too low", false, battery(20), cool, roaming(), blocker::BatteryTooLow{20}},
             {"one percent above it is not", false, battery(21), cool, roaming(), {}},
             {"an unknown level is not a low one", false, battery({}), cool, roaming(), {}},
             {"unless the user does not care", false, battery(1), cool, heedless, {}},
         }) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(violation(row.engaged, on(row.power, row.thermal), row.settings), row.expected);
    }
}

TEST(SessionMachine, EndsByTheFirstReasonThatHolds)
{
    // After four hours on battery with the lid closed all is due at once.
    auto settings = roaming();
    settings.energy.batteryTimeLimit = 4h;
    struct Row {
        const char* rule;
        SessionOptions options;
        SessionConditions conditions;
        Seconds after;
        const char* events;
    };
    for (const auto& row : std::vector<Row>{
             {"heat", lidClosed, on(battery(20), hot), 4h, "ended overheating"},
             {"the level", lidClosed, on(battery(20)), 4h, "ended lowBattery 20"},
             {"the time on battery", lidClosed, on(battery(21)), 4h, "ended batteryTimeLimit"},
             {"the time with the lid closed", lidClosed, on(charger()), 4h, "ended closedLidTimeLimit"},
             {"the plan", lidOpen, on(charger()), 4h, "ended timeElapsed"},
             {"a moment earlier nothing", lidClosed, on(battery(21)), Seconds{14399.999}, "endingSoon"},
             {"warnings come with heat first",
                 lidOpen,
                 on(charger(), critical),
                 4h - 5min,
                 "overheatingWarning, endingSoon"},
         }) {
        SCOPED_TRACE(row.rule);
        SessionMachine machine{settings, utc};
        ASSERT_TRUE(machine.start(plan::Timer{4h}, row.options, on(battery(80)), start));
        EXPECT_EQ(summary(machine.update(row.conditions, start + row.after)), row.events);
    }
}

} // namespace
