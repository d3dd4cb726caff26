#include "Core/Session/SessionMachine.h"

#include "Core/Session/Guardrails.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

const auto start = Instant::fromISO8601("2026-01-01T12:00:00Z").value();
const auto utc = Calendar::inZone("UTC").value();
constexpr SessionOptions lidOpen{}, lidClosed{.closedLid = true};

SessionConditions on(
    PowerSnapshot power, ThermalLevel thermal = ThermalLevel::nominal, HelperStatus helper = helper::Ready{})
{
    return {.power = power, .thermal = thermal, .helper = helper};
}

SessionMachine running(const SessionPlan& plan, const SessionOptions& options, const SessionConditions& conditions,
    const SessionSettings& settings = roaming())
{
    SessionMachine machine{settings, utc};
    EXPECT_TRUE(machine.start(plan, options, conditions, start));
    return machine;
}

std::optional<Seconds> offset(std::optional<Instant> date)
{
    return date ? std::optional{*date - start} : std::nullopt;
}

TEST(Violation, FirstRuleThatHoldsWins)
{
    constexpr auto hot = ThermalLevel::serious, cool = ThermalLevel::nominal;
    auto heedless = roaming();
    heedless.energy.stopsOnLowBattery = false;
    struct Row {
        const char* rule;
        bool engaged;
        PowerSnapshot power;
        ThermalLevel thermal;
        SessionSettings settings;
        std::optional<ClosedLidBlocker> expected;
    };
    for (const auto& row : std::vector<Row>{
             {"heat stops an engaged session first", true, battery(5), hot, {}, blocker::TooHot{}},
             {"fair is not hot", true, charger(80), ThermalLevel::fair, {}, {}},
             {"heat alone never stops an open lid", false, charger(80), ThermalLevel::critical, {}, {}},
             {"a low level on the charger is fine", false, charger(5), cool, {}, {}},
             {"the charger is required by default", false, battery(80), cool, {}, blocker::ChargerRequired{}},
             {"also with the lid closed", true, battery(80), cool, {}, blocker::ChargerRequired{}},
             {"each lid has its own rule: open",
                 false,
                 battery(80),
                 cool,
                 {.closedLid = {.continuesOnBattery = true}},
                 blocker::ChargerRequired{}},
             {"each lid has its own rule: closed",
                 true,
                 battery(80),
                 cool,
                 {.energy = {.requiresACPower = false}},
                 blocker::ChargerRequired{}},
             {"the threshold itself is too low", false, battery(20), cool, roaming(), blocker::BatteryTooLow{20}},
             {"one percent above it is not", false, battery(21), cool, roaming(), {}},
             {"an unknown level is not a low one", false, battery({}), cool, roaming(), {}},
             {"unless the user does not care", false, battery(1), cool, heedless, {}},
         }) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(violation(row.engaged, on(row.power, row.thermal), row.settings), row.expected);
    }
}

TEST(EnergyPolicy, ThresholdIsTheNearestStepWithinItsRange)
{
    struct Row {
        std::int64_t stored, effective;
    };
    for (const auto& [stored, effective] : std::vector<Row>{
             {22, 20}, {23, 25}, {3, 10}, {12, 10}, {13, 15}, {82, 80}, {95, 80}, {INT64_MIN, 10}, {INT64_MAX, 80}})
        EXPECT_EQ(EnergyPolicy::normalizedThreshold(stored), effective) << stored;
}

TEST(SessionMachine, HeatCountsOnlyWhereTheHelperIsReady)
{
    SessionMachine machine{{}, utc};
    const auto hot = ThermalLevel::serious;
    EXPECT_EQ(machine.refusal(lidClosed, on(charger(), hot)), StartRefusal{refusal::TooHot{}});
    EXPECT_EQ(machine.refusal(lidClosed, on(charger(), hot, helper::Failed{})), std::nullopt);
    EXPECT_EQ(machine.refusal(lidOpen, on(charger(), hot)), std::nullopt);
}

TEST(SessionMachine, RefusedStartChangesNothing)
{
    auto machine = running(plan::Unlimited{}, lidOpen, on(charger()));
    const auto before = machine;
    const auto refused = machine.start(plan::Unlimited{}, lidOpen, on(charger()), start + 1s);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), StartRefusal{refusal::AlreadyActive{}});
    EXPECT_EQ(machine, before);
}

TEST(SessionMachine, PlansEndWhenTheySay)
{
    struct Row {
        const char* plan;
        SessionPlan start;
        std::optional<Seconds> endsAfter;
        std::optional<Seconds> firstDeadline;
    };
    for (const auto& row : std::vector<Row>{
             {"timer", plan::Timer{10min}, 10min, 5min},
             {"a timer of exactly five minutes has no warning", plan::Timer{5min}, 5min, 5min},
             {"a timer of six minutes has one", plan::Timer{6min}, 6min, 1min},
             {"rounded half up to the minute", plan::Timer{90s}, 2min, 2min},
             {"rounded down below the half", plan::Timer{89s}, 1min, 1min},
             {"never shorter than a minute", plan::Timer{-5s}, 1min, 1min},
             {"never longer than a day", plan::Timer{Seconds{1e300}}, 24h, 24h - 5min},
             {"until", plan::Until{{12, 30}}, 30min, 25min},
             {"unlimited", plan::Unlimited{}, {}, {}},
             {"an agent plan has no warning", plan::Agent{12h}, 12h, 12h},
             {"an agent plan without cap", plan::Agent{}, {}, {}},
         }) {
        SCOPED_TRACE(row.plan);
        const auto machine = running(row.start, lidOpen, on(charger()));
        EXPECT_EQ(offset(machine.state().activeSession()->endsAt), row.endsAfter);
        EXPECT_EQ(offset(machine.nextDeadline()), row.firstDeadline);
    }
}

TEST(SessionMachine, EndsByTheFirstReasonThatHolds)
{
    auto limited = roaming();
    limited.energy.batteryTimeLimit = 1h;
    struct Row {
        const char* rule;
        SessionPlan plan;
        SessionOptions options;
        SessionSettings settings;
        SessionConditions conditions;
        Seconds after;
        const char* events;
    };
    for (const auto& row : std::vector<Row>{
             {"charger out", plan::Unlimited{}, lidClosed, {}, on(battery(80)), 1s, "ended chargerDisconnected"},
             {"battery low", plan::Unlimited{}, lidOpen, roaming(), on(battery(20)), 1s, "ended lowBattery 20"},
             {"too hot",
                 plan::Timer{60s},
                 lidClosed,
                 {},
                 on(charger(), ThermalLevel::serious),
                 60s,
                 "ended overheating"},
             {"hot with the lid open",
                 plan::Unlimited{},
                 lidOpen,
                 {},
                 on(charger(), ThermalLevel::serious),
                 60s,
                 "overheatingWarning"},
             {"a moment before the time", plan::Timer{60s}, lidOpen, {}, on(charger()), Seconds{59.999}, ""},
             {"exactly at the time", plan::Timer{60s}, lidOpen, {}, on(charger()), 60s, "ended timeElapsed"},
             {"the cap of an agent session",
                 plan::Agent{60s},
                 lidOpen,
                 {},
                 on(charger()),
                 60s,
                 "ended safetyCapReached"},
             {"closed lid before its four hours",
                 plan::Unlimited{},
                 lidClosed,
                 {},
                 on(charger()),
                 Seconds{14399.999},
                 ""},
             {"closed lid for four hours",
                 plan::Unlimited{},
                 lidClosed,
                 {},
                 on(charger()),
                 4h,
                 "ended closedLidTimeLimit"},
             {"the lid's limit wins over the plan's end",
                 plan::Timer{4h},
                 lidClosed,
                 {},
                 on(charger()),
                 4h,
                 "ended closedLidTimeLimit"},
             {"battery time before the end", plan::Timer{1h}, lidOpen, limited, on(charger()), 1h, "ended timeElapsed"},
             {"warnings come with heat first",
                 plan::Timer{10min},
                 lidOpen,
                 {},
                 on(charger(), ThermalLevel::critical),
                 5min,
                 "overheatingWarning, endingSoon"},
         }) {
        SCOPED_TRACE(row.rule);
        auto machine = running(row.plan, row.options, on(charger()), row.settings);
        EXPECT_EQ(summary(machine.update(row.conditions, start + row.after)), row.events);
    }
}

TEST(SessionMachine, BatteryTimeCountsUninterruptedStretches)
{
    auto settings = roaming();
    settings.energy.batteryTimeLimit = 1h;
    auto machine = running(plan::Unlimited{}, lidOpen, on(battery(80)), settings);
    EXPECT_EQ(offset(machine.nextDeadline()), Seconds{1h});
    EXPECT_EQ(summary(machine.update(on(charger(80)), start + 50min)), "");
    EXPECT_EQ(machine.nextDeadline(), std::nullopt);
    EXPECT_EQ(summary(machine.update(on(battery(80)), start + 60min)), "");
    EXPECT_EQ(summary(machine.update(on(battery(80)), start + 119min)), "");
    EXPECT_EQ(summary(machine.update(on(battery(80)), start + 120min)), "ended batteryTimeLimit");
}

TEST(SessionMachine, HeatWarnsOncePerHotSpell)
{
    auto machine = running(plan::Unlimited{}, lidOpen, on(charger()));
    using enum ThermalLevel;
    struct Row {
        ThermalLevel level;
        const char* events;
    };
    for (const auto& [level, events] : std::vector<Row>{{fair, ""},
             {serious, "overheatingWarning"},
             {critical, ""},
             {fair, ""},
             {serious, ""},
             {nominal, ""},
             {critical, "overheatingWarning"}})
        EXPECT_EQ(summary(machine.update(on(charger(), level), start)), events) << rawValue(level);
}

TEST(SessionMachine, ExtensionsEndADayAheadAtMost)
{
    auto machine = running(plan::Timer{24h}, lidOpen, on(charger()));
    EXPECT_FALSE(machine.canExtend(start));
    EXPECT_EQ(summary(machine.extend(start)), "");

    const auto later = start + 5min;
    EXPECT_EQ(summary(machine.extend(later)), "extended");
    EXPECT_EQ(offset(machine.state().activeSession()->endsAt), Seconds{24h + 5min});
    EXPECT_FALSE(machine.canExtend(later));

    auto unlimited = running(plan::Unlimited{}, lidOpen, on(charger()));
    EXPECT_FALSE(unlimited.canExtend(start));
}

TEST(SessionMachine, ExtensionAsksForANewWarning)
{
    auto machine = running(plan::Timer{6min}, lidOpen, on(charger()));
    EXPECT_EQ(summary(machine.update(on(charger()), start + 1min)), "endingSoon");
    machine.extend(start + 2min);
    EXPECT_EQ(offset(machine.nextDeadline()), Seconds{16min});
    EXPECT_EQ(summary(machine.update(on(charger()), start + 16min)), "endingSoon");
}

TEST(SessionMachine, ClosedLidCanBeSwitchedWhileRunning)
{
    auto machine = running(plan::Unlimited{}, lidOpen, on(battery(80)), {.energy = {.requiresACPower = false}});
    const auto refused = machine.setClosedLid(true, on(battery(80)), start + 1s);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), StartRefusal{refusal::ChargerRequired{}});
    EXPECT_FALSE(machine.state().activeSession()->options.closedLid);

    ASSERT_TRUE(machine.setClosedLid(true, on(charger(80)), start + 2s));
    EXPECT_EQ(offset(machine.state().activeSession()->closedLidEngagedSince), 2s);
    // Disabling is never refused; the session then goes by the open lid's rules.
    EXPECT_EQ(summary(machine.setClosedLid(false, on(battery(80)), start + 3s).value()), "");
    EXPECT_EQ(machine.state().activeSession()->closedLidEngagedSince, std::nullopt);
}

TEST(SessionMachine, RequirementsFollowEngagementAndLid)
{
    struct Row {
        const char* rule;
        SessionOptions options;
        HelperStatus helper;
        bool shut;
        PowerRequirements expected;
    };
    for (const auto& row : std::vector<Row>{
             {"plain", {}, helper::Ready{}, false, {true, false, false, false}},
             {"display", {.keepsDisplayAwake = true}, helper::Ready{}, true, {true, true, false, false}},
             {"closed lid, open",
                 {.keepsDisplayAwake = true, .closedLid = true},
                 helper::Ready{},
                 false,
                 {true, true, true, false}},
             {"closed lid, shut",
                 {.keepsDisplayAwake = true, .closedLid = true},
                 helper::Ready{},
                 true,
                 {true, false, true, true}},
             {"no helper",
                 {.keepsDisplayAwake = true, .closedLid = true},
                 helper::Failed{},
                 true,
                 {true, true, false, false}},
         }) {
        SCOPED_TRACE(row.rule);
        auto conditions = on(charger(), ThermalLevel::nominal, row.helper);
        conditions.lidClosedWithoutExternalDisplay = row.shut;
        EXPECT_EQ(running(plan::Unlimited{}, row.options, conditions).requirements(conditions), row.expected);
    }
    EXPECT_EQ((SessionMachine{{}, utc}.requirements(on(charger()))), PowerRequirements::none());
}

TEST(SessionMachine, GuardrailsListWhatWatches)
{
    auto limited = roaming();
    limited.energy.batteryTimeLimit = 1h;
    const auto names = [](const SessionSettings& settings, const SessionOptions& options, PowerSnapshot power) {
        std::string text;
        for (const auto& guardrail :
            running(plan::Unlimited{}, options, on(power), settings).activeGuardrails(on(power)))
            text += std::string{caseName(guardrail)} + " ";
        return text;
    };
    EXPECT_EQ(names({}, lidOpen, charger(80)), "chargerRequired ");
    EXPECT_EQ(names(limited, lidOpen, charger(80)), "lowBattery batteryTimeLimit ");
    EXPECT_EQ(names(limited, lidClosed, battery(80)), "lowBattery batteryTimeLimit closedLidLimit ");
    EXPECT_EQ(names(limited, lidClosed, charger()), "closedLidLimit ");
}

TEST(SessionMachine, ClosedLidStatusSaysWhatWouldHappen)
{
    const HelperStatus unsigned_ = helper::Unsupported{ClosedLidUnsupportedReason::unsignedBuild};
    SessionMachine idle{{}, utc};
    struct Row {
        SessionConditions conditions;
        bool requested;
        ClosedLidStatus expected;
    };
    for (const auto& row : std::vector<Row>{
             {on(charger(), {}, unsigned_), true, closedLid::Unsupported{ClosedLidUnsupportedReason::unsignedBuild}},
             {on(charger(), {}, helper::NotInstalled{}), true, closedLid::NotConfigured{}},
             {on(charger(), {}, helper::AwaitingApproval{}), true, closedLid::AwaitingApproval{}},
             {on(charger(), {}, helper::Failed{}), true, closedLid::HelperFailed{}},
             {on(charger()), false, closedLid::Off{}},
             {on(charger()), true, closedLid::Ready{}},
             {on(battery(80)), true, closedLid::Blocked{blocker::ChargerRequired{}}},
             {on(charger(), ThermalLevel::serious), true, closedLid::Blocked{blocker::TooHot{}}},
         }) {
        SCOPED_TRACE(caseName(row.expected));
        EXPECT_EQ(idle.closedLidStatus(row.requested, row.conditions), row.expected);
    }
    auto conditions = on(charger());
    const auto machine = running(plan::Unlimited{}, lidClosed, conditions);
    EXPECT_EQ(machine.closedLidStatus(false, conditions), ClosedLidStatus{closedLid::Verifying{}});
    conditions.lidSleepDisabled = true;
    EXPECT_EQ(machine.closedLidStatus(false, conditions), ClosedLidStatus{closedLid::CanCloseLid{}});
    EXPECT_TRUE(machine.closedLidChecklist(conditions).isAllClear());
    EXPECT_FALSE(idle.closedLidChecklist(conditions).isAllClear());
}

TEST(EndReason, TraitsOfEveryCase)
{
    std::string notifying, guarding;
    for (const auto& reason : payloadFreeEndReasons) {
        notifying += traits(reason).notifies ? std::string{caseName(reason)} + " " : "";
        guarding += traits(reason).isGuardrail ? std::string{caseName(reason)} + " " : "";
    }
    EXPECT_EQ(notifying,
        "timeElapsed chargerDisconnected batteryTimeLimit closedLidTimeLimit overheating agentsFinished "
        "safetyCapReached ");
    EXPECT_EQ(guarding, "chargerDisconnected batteryTimeLimit closedLidTimeLimit overheating safetyCapReached ");
    EXPECT_TRUE(traits(end::LowBattery{5}).notifies && traits(end::LowBattery{5}).isGuardrail);
}

} // namespace
