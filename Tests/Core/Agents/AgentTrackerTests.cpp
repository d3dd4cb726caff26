#include "Core/Agents/AgentEndCondition.h"
#include "Core/Scheduling/VirtualTime.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

using enum AgentSignal;

struct Tracker : testing::Test {
    VirtualTime time{Instant::fromISO8601("2026-01-01T12:00:00Z").value()};
    AgentTracker tracker;

    void report(AgentSignal signal, const std::string& id = "a", AgentKind agent = AgentKind::claudeCode,
        const std::optional<std::string>& cwd = {})
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
    report(working, "a", AgentKind::claudeCode, "/a \x1B[31m\x7F\n\u009B\u2028\u202E\u2069é👩\u200D💻\u00A0\xFF");
    EXPECT_EQ(tracker.sessions().front().folderName(), "a �[31m������é👩\u200D💻\u00A0�");
    report(working, "a", AgentKind::claudeCode, "/");
    EXPECT_EQ(tracker.sessions().front().folderName(), "/");
    report(working, "a", AgentKind::claudeCode, "");
    EXPECT_EQ(tracker.sessions().front().folderName(), std::nullopt);
}

TEST_F(Tracker, KnowsSinceWhenAndWhetherItHasWorked)
{
    struct Row {
        AgentSignal signal;
        Seconds since; // after the first of them; they come a minute apart
        bool hasWorked;
    };
    const auto first = time.now();
    for (const auto& row : std::vector<Row>{
             {sessionStarted, 0s, false},
             {finished, 0s, false},
             {working, 120s, true},
             {working, 120s, true},
             {waitingForApproval, 240s, true},
             {finished, 300s, true},
             {sessionStarted, 300s, true},
         }) {
        SCOPED_TRACE(testing::Message() << rawValue(row.signal) << " after " << (time.now() - first).count() << " s");
        report(row.signal);
        EXPECT_EQ(tracker.sessions().front().activitySince - first, row.since);
        EXPECT_EQ(tracker.sessions().front().hasWorked, row.hasWorked);
        time.advance(60s);
    }
}

TEST_F(Tracker, TakesCorrections)
{
    int changes = 0;
    report(finished);
    tracker.onChange = [&] { ++changes; };
    const auto since = time.now() - 60s;
    tracker.correct("claude:a", AgentActivity::working, since);
    EXPECT_EQ(sessions(), "claude:a working");
    EXPECT_EQ(tracker.sessions().front().activitySince, since);
    EXPECT_TRUE(tracker.sessions().front().hasWorked);
    tracker.correct("claude:a", AgentActivity::working, time.now());
    tracker.correct("claude:b", AgentActivity::working, time.now());
    tracker.endUnheard("claude:b");
    EXPECT_EQ(changes, 1) << "nothing has changed since";
    tracker.correct("claude:a", AgentActivity::idle, time.now());
    EXPECT_EQ(tracker.lastFinished(), tracker.sessions().front());
    tracker.correct("claude:a", AgentActivity::waitingForApproval, time.now());
    tracker.endUnheard("claude:a");
    EXPECT_EQ(sessions(), "");
    EXPECT_EQ(tracker.lastFinished()->activity, AgentActivity::waitingForApproval);
    EXPECT_EQ(changes, 4);
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

// What the phases are in the course of a session is in Tests/Scenarios.
TEST_F(Tracker, AnEndConditionFollowsItFromItsBeginToItsEnd)
{
    const auto condition = std::make_shared<AgentEndCondition>(tracker, AgentPolicy{}, time);
    int changes = 0;
    condition->onChange = [&] { ++changes; };
    report(working, "before");
    condition->sessionDidBegin(time.now());
    EXPECT_EQ(condition->phase(), AgentEndCondition::Phase{phase::Working{}});
    report(finished, "before");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(condition->phase(), (AgentEndCondition::Phase{phase::Finishing{time.now() + 2min}}));
    condition->sessionDidEnd();
    report(working);
    EXPECT_EQ(changes, 1);
}

} // namespace
