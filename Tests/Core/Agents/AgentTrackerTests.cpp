#include "Core/Agents/AgentEndCondition.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Core/Session/SessionCoordinator.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

using enum AgentSignal;

struct Fixture : testing::Test {
    VirtualTime time{Instant::fromISO8601("2026-01-01T12:00:00Z").value()};
    AgentTracker tracker;

    void report(AgentSignal signal, const std::string& id = "a", AgentKind agent = AgentKind::claudeCode,
        std::optional<std::string> cwd = {})
    {
        tracker.record({.agent = agent, .sessionID = id, .cwd = cwd, .signal = signal, .date = time.now()});
    }

    /// "claude:a working; codex:a idle"
    std::string sessions() const
    {
        std::string text;
        for (const auto& session : tracker.sessions())
            text += (text.empty() ? "" : "; ") + session.id + " " + std::string{rawValue(session.activity)};
        return text;
    }
};

using Tracker = Fixture;

TEST_F(Tracker, FoldsSignalsIntoActivities)
{
    struct Row {
        AgentSignal signal;
        const char* sessions;
        bool setsLastFinished;
    };
    for (const auto& row : std::vector<Row>{
             {sessionStarted, "claude:a idle", false},
             {working, "claude:a working", false},
             {waitingForApproval, "claude:a waitingForApproval", false},
             {finished, "claude:a idle", true},
             {sessionEnded, "", false},
         }) {
        SCOPED_TRACE(rawValue(row.signal));
        report(row.signal);
        EXPECT_EQ(sessions(), row.sessions);
        EXPECT_EQ(tracker.lastFinished().has_value(), row.setsLastFinished || row.signal == sessionEnded);
    }
}

TEST_F(Tracker, KeepsSessionsApartAndInOrder)
{
    report(working);
    report(working, "a", AgentKind::codex);
    report(finished);
    report(working, "b");
    EXPECT_EQ(sessions(), "claude:a idle; codex:a working; claude:b working");
}

TEST_F(Tracker, KeepsTheLastWorkingDirectory)
{
    report(working, "a", AgentKind::claudeCode, "/home/me/project/");
    report(finished);
    EXPECT_EQ(tracker.sessions().front().cwd, "/home/me/project/");
    EXPECT_EQ(tracker.sessions().front().folderName(), "project");
    report(working, "a", AgentKind::claudeCode, "");
    EXPECT_EQ(tracker.sessions().front().folderName(), std::nullopt);
}

TEST_F(Tracker, RemembersWhoEndedWhileBusy)
{
    report(working);
    report(sessionEnded);
    ASSERT_TRUE(tracker.lastFinished());
    EXPECT_EQ(tracker.lastFinished()->activity, AgentActivity::working);
    report(sessionStarted, "b");
    report(sessionEnded, "b");
    EXPECT_EQ(tracker.lastFinished()->id, "claude:a");
}

TEST_F(Tracker, ForgetsWhoWasSilentForMoreThanTwelveHours)
{
    int changes = 0;
    report(working, "a");
    time.advance(1s);
    report(working, "b");
    tracker.onChange = [&] { ++changes; };
    tracker.pruneStale(time.now() + 12h - 1s);
    EXPECT_EQ(sessions(), "claude:a working; claude:b working");
    EXPECT_EQ(changes, 0);
    tracker.pruneStale(time.now() + 12h);
    EXPECT_EQ(sessions(), "claude:b working");
    EXPECT_EQ(changes, 1);
    report(sessionEnded, "unknown");
    EXPECT_EQ(changes, 2);
}

struct AgentSessions : Fixture {
    FakePowerSource power;
    FakeThermal thermal;
    SessionCoordinator coordinator{{},
        Calendar::inZone("UTC").value(),
        SessionEnvironment{.clock = time, .scheduler = time, .power = power, .thermal = thermal},
        helper::NotInstalled{}};
    std::shared_ptr<AgentEndCondition> condition;
    SessionEvents events;

    void start(AgentPolicy policy = {})
    {
        coordinator.onEvent = [this](const SessionEvent& event) { events.push_back(event); };
        condition = std::make_shared<AgentEndCondition>(tracker, policy, time);
        ASSERT_TRUE(coordinator.start(plan::Agent{12h}, {}, condition));
    }
    std::string_view phase() const
    {
        // A variable: the case name must not outlive what it was read from.
        const auto current = condition->phase();
        return caseName(current);
    }
    bool isActive() const { return coordinator.state().isActive(); }
};

TEST_F(AgentSessions, EndAfterTheGraceDelayOnceAllAreDone)
{
    report(finished, "idle from before");
    start();
    EXPECT_EQ(phase(), "waitingForAgents");
    report(finished, "idle from before");
    EXPECT_EQ(phase(), "waitingForAgents");

    report(working, "a");
    report(working, "b");
    report(finished, "a");
    EXPECT_EQ(phase(), "working");
    report(finished, "b");
    EXPECT_EQ(condition->phase(), (AgentEndCondition::Phase{phase::Finishing{time.now() + 2min}}));

    time.advance(1min);
    report(finished, "a"); // does not restart the delay
    time.advance(Seconds{59.9});
    EXPECT_TRUE(isActive());
    time.advance(Seconds{0.1});
    EXPECT_EQ(summary(events), "started, ended agentsFinished");
    EXPECT_FALSE(tracker.onChange);
}

TEST_F(AgentSessions, WorkDuringTheDelayStartsItAnew)
{
    start();
    report(working);
    report(finished);
    time.advance(119s);
    report(working);
    EXPECT_EQ(phase(), "working");
    time.advance(1h);
    report(sessionEnded);
    time.advance(119s);
    EXPECT_TRUE(isActive());
    time.advance(1s);
    EXPECT_FALSE(isActive());
}

TEST_F(AgentSessions, WaitingCountsAsThePolicySays)
{
    for (const bool countsAsFinished : {true, false}) {
        start({.waitingCountsAsFinished = countsAsFinished});
        report(working);
        report(waitingForApproval);
        EXPECT_EQ(phase(), countsAsFinished ? "finishing" : "working");
        coordinator.stop(end::StoppedByUser{});
    }
}

TEST_F(AgentSessions, GraceDelayIsClamped)
{
    struct Row {
        Seconds delay, effective;
    };
    for (const auto& [delay, effective] : std::vector<Row>{{-5s, 0s}, {1000s, 900s}, {900s, 900s}}) {
        SCOPED_TRACE(delay.count());
        start({.graceDelay = delay});
        report(working);
        report(finished);
        time.advance(effective);
        EXPECT_FALSE(isActive());
    }
}

TEST_F(AgentSessions, KeptAwakeAgentsNoLongerEndIt)
{
    start();
    report(working);
    report(finished);
    condition->keepAwake();
    EXPECT_EQ(phase(), "keptAwake");
    report(working);
    report(finished);
    time.advance(11h);
    EXPECT_TRUE(isActive());
    time.advance(1h);
    EXPECT_EQ(summary(events), "started, ended safetyCapReached");
}

TEST_F(AgentSessions, SilentOnesAreForgottenAtTheStart)
{
    report(working);
    time.advance(12h + 1s);
    start();
    EXPECT_EQ(phase(), "waitingForAgents");
}

} // namespace
