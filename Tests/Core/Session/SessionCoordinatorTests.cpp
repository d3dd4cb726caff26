#include "Core/Session/SessionCoordinator.h"

#include "Core/Agents/AgentTracker.h"
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

/// Ends the session from inside its own calls.
struct SelfEnding final : SessionEndCondition {
    std::function<void()> act;
    std::string* calls = nullptr;

    ~SelfEnding() override { *calls += "freed"; }
    void sessionDidBegin(Instant) override
    {
        act();
        *calls += "begun ";
    }
    std::optional<EndReason> evaluate(Instant) override
    {
        act();
        *calls += "evaluated ";
        return end::AgentsFinished{};
    }
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
        coordinator.emplace(roaming(), Calendar::current(), environment(*this), helper::Ready{});
        coordinator->onEvent = [this](const SessionEvent& event) { events.push_back(event); };
    }

    static SessionEnvironment environment(Coordinator& all)
    {
        return {.clock = all.time, .scheduler = all.time, .power = all.power, .thermal = all.thermal};
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

TEST_F(Coordinator, AnEndConditionMayEndTheSessionAtOnce)
{
    thermal.report(ThermalLevel::critical);
    condition->verdict = end::AgentsFinished{};
    ASSERT_TRUE(coordinator->start(plan::Unlimited{}, {}, condition));
    EXPECT_EQ(taken(), "started, overheatingWarning, ended agentsFinished");
}

TEST_F(Coordinator, AnEndConditionOutlivesTheCallInWhichItEndsTheSession)
{
    for (const bool says : {true, false}) {
        std::string calls;
        auto ending = std::make_shared<SelfEnding>();
        ending->calls = &calls;
        ending->act
            = [&, self = ending.get()] { says ? notify(self->onChange) : coordinator->stop(end::StoppedByUser{}); };
        ASSERT_TRUE(coordinator->start(plan::Unlimited{}, {}, std::move(ending)));
        EXPECT_EQ(calls, says ? "begun evaluated freed" : "begun freed");
        EXPECT_EQ(taken(), says ? "started, ended agentsFinished" : "started, ended stoppedByUser");
    }
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

TEST_F(Coordinator, ASinkMayStartTheNextSession)
{
    int starts = 0;
    coordinator->onEvent = [&](const SessionEvent& event) {
        EXPECT_EQ(deadline().has_value(), coordinator->state().isActive()) << "set before it is told";
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

TEST_F(Coordinator, ReportsEveryChangeFromAnotherThread)
{
    int change = 0;
    AgentTracker tracker;
    const std::vector<std::function<void()>> changes{
        [&] { coordinator->setSettings({}); },
        [&] { static_cast<void>(coordinator->start(plan::Unlimited{}, {})); },
        [&] { static_cast<void>(coordinator->setClosedLid(true)); },
        [&] { coordinator->setKeepsDisplayAwake(true); },
        [&] { coordinator->extend(); },
        [&] { coordinator->stop(end::StoppedByUser{}); },
        [&] { coordinator->updateHelper(helper::Failed{}, true); },
        [&] { coordinator->updateLid(true); },
        [&] { tracker.record({}); },
        [&] { tracker.pruneStale(start); },
        [&] { coordinator.emplace(roaming(), Calendar::current(), environment(*this), helper::Ready{}); },
    };
    for (const auto& each : changes) {
        std::string places;
        mainThread::onViolation([&](const std::string& place) { places += place; });
        std::thread{each}.join();
        EXPECT_NE(places, "") << "change " << change++;
    }
    mainThread::onViolation({});
}

} // namespace
