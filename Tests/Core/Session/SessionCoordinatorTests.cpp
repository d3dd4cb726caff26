#include "Core/Session/SessionCoordinator.h"

#include "Core/Scheduling/MainThread.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

#include <thread>

using namespace vespra;

namespace {

class ScriptedCondition final : public SessionEndCondition {
public:
    std::optional<EndReason> verdict;
    std::optional<Instant> deadline;
    std::string calls;

    void sessionDidBegin(Instant) override { calls += "begin "; }
    std::optional<EndReason> evaluate(Instant) override { return verdict; }
    std::optional<Instant> nextDeadline(Instant) override { return deadline; }
    void sessionDidEnd() override { calls += onChange ? "end-too-early " : "end "; }
};

struct Coordinator : testing::Test {
    VirtualTime time{Instant::fromISO8601("2026-01-01T12:00:00Z").value()};
    FakePowerSource power{charger(80)};
    FakeThermal thermal;
    std::optional<SessionCoordinator> coordinator;
    SessionEvents events;
    const std::shared_ptr<ScriptedCondition> condition = std::make_shared<ScriptedCondition>();
    const Instant start = time.now();

    Coordinator()
    {
        coordinator.emplace(roaming(),
            Calendar::inZone("UTC").value(),
            SessionEnvironment{.clock = time, .scheduler = time, .power = power, .thermal = thermal},
            helper::Ready{});
        coordinator->onEvent = [this](const SessionEvent& event) { events.push_back(event); };
    }

    std::string taken() { return summary(std::exchange(events, {})); }
    std::optional<Seconds> deadline() const
    {
        EXPECT_LE(time.pendingDeadlines(), 1u);
        const auto next = time.nextDeadline();
        return next ? std::optional{*next - start} : std::nullopt;
    }
};

TEST_F(Coordinator, AComputerThatSleptOverTheEndEndsAtTheWakeUp)
{
    ASSERT_TRUE(coordinator->start(plan::Timer{10min}, {}));
    time.sleep(3h);
    EXPECT_EQ(taken(), "started, ended timeElapsed");
    EXPECT_EQ(coordinator->state().lastEnd()->date, start + 3h);
}

TEST_F(Coordinator, ReadingsAndSettingsMoveTheOneDeadline)
{
    auto settings = roaming();
    settings.energy.batteryTimeLimit = 1h;
    coordinator->setSettings(settings);
    ASSERT_TRUE(coordinator->start(plan::Unlimited{}, {}));
    EXPECT_EQ(deadline(), std::nullopt);
    time.advance(1min);
    power.report(battery(80));
    EXPECT_EQ(deadline(), 61min);
    power.report(charger(80));
    EXPECT_EQ(deadline(), std::nullopt);
    power.report(battery(80));
    settings.energy.batteryTimeLimit.reset();
    coordinator->setSettings(settings);
    EXPECT_EQ(deadline(), std::nullopt);
    coordinator->systemWillSleep();
    EXPECT_EQ(taken(), "started, ended systemSleep");
}

TEST_F(Coordinator, EndConditionTakesPartFromStartToEnd)
{
    condition->deadline = start + 7min;
    ASSERT_TRUE(coordinator->start(plan::Timer{10min}, {}, condition));
    time.advance(5min);
    EXPECT_EQ(deadline(), 7min);

    condition->deadline.reset();
    notify(condition->onChange);
    EXPECT_EQ(deadline(), 10min);

    condition->deadline = start + 9min;
    condition->verdict = end::AgentsFinished{};
    notify(condition->onChange);
    EXPECT_EQ(taken(), "started, endingSoon, ended agentsFinished");
    EXPECT_EQ(deadline(), std::nullopt);
    coordinator->stop(end::StoppedByUser{});
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(condition->calls, "begin end ");
}

TEST_F(Coordinator, AGuardrailWinsOverTheEndCondition)
{
    ASSERT_TRUE(coordinator->start(plan::Unlimited{}, {}, condition));
    condition->verdict = end::AgentsFinished{};
    power.report(battery(5));
    EXPECT_EQ(taken(), "started, ended lowBattery 5");
}

TEST_F(Coordinator, AnEndConditionMayEndTheSessionAtOnce)
{
    condition->verdict = end::AgentsFinished{};
    ASSERT_TRUE(coordinator->start(plan::Unlimited{}, {}, condition));
    EXPECT_EQ(taken(), "started, ended agentsFinished");
}

TEST_F(Coordinator, ARefusedStartDoesNotTouchTheEndCondition)
{
    power.report(battery(10));
    const auto refused = coordinator->start(plan::Unlimited{}, {}, condition);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), StartRefusal{refusal::BatteryTooLow{10}});
    EXPECT_EQ(condition->calls, "");
    EXPECT_FALSE(condition->onChange);
    EXPECT_EQ(taken(), "");
}

TEST_F(Coordinator, EventsComeAfterTheDeadlineIsSet)
{
    std::optional<Seconds> seen;
    coordinator->onEvent = [&](const SessionEvent&) { seen = deadline(); };
    ASSERT_TRUE(coordinator->start(plan::Timer{60s}, {}));
    EXPECT_EQ(seen, 60s);
}

TEST_F(Coordinator, ASinkMayStartTheNextSession)
{
    int starts = 0;
    coordinator->onEvent = [&](const SessionEvent& event) {
        if (std::holds_alternative<event::Ended>(event) && ++starts < 3) {
            EXPECT_TRUE(coordinator->start(plan::Timer{60s}, {}));
        }
    };
    ASSERT_TRUE(coordinator->start(plan::Timer{60s}, {}));
    time.advance(1h);
    EXPECT_EQ(starts, 3);
    EXPECT_FALSE(coordinator->state().isActive());
}

TEST_F(Coordinator, CallbacksOutliveItAndDoNothing)
{
    ASSERT_TRUE(coordinator->start(plan::Timer{60s}, {}, condition));
    taken();
    coordinator.reset();
    power.report(battery(1));
    thermal.report(ThermalLevel::critical);
    notify(condition->onChange);
    time.advance(1h);
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(time.pendingDeadlines(), 0u);
}

TEST_F(Coordinator, ReportsACallFromAnotherThread)
{
    std::string place;
    mainThread::onViolation([&](const std::string& where) { place = where; });
    std::thread{[&] { coordinator->updateLid(true); }}.join();
    mainThread::onViolation({});
    EXPECT_NE(place.find("SessionCoordinator.cpp"), std::string::npos) << place;
}

} // namespace
