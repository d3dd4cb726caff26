#include "Core/Agents/AgentCourse.h"
#include "Core/Agents/AgentEndCondition.h"
#include "Core/Agents/CodexThreads.h"

#include <gtest/gtest.h>

#include <random>

namespace vespra::courses {

using enum AgentActivity;
using Process = AgentReading::Process;
static const Instant noon = Instant::fromISO8601("2026-01-01T12:00:00Z").value();

static AgentEvent event(AgentSignal signal, Instant date = noon, std::optional<ProcessIdentity> process = {})
{
    AgentEvent event{.agent = AgentKind::codex, .sessionID = "s", .signal = signal, .date = date};
    event.origin.process = process;
    return event;
}

/// What `judge` makes of one reading: the new activity, "ended" or nothing.
static std::string judged(AgentCourse& course, const AgentReading& reading, AgentActivity current, Instant now)
{
    const auto correction = course.judge(reading, current, now);
    if (!correction)
        return "";
    EXPECT_LE(correction->since, now);
    return correction->activity ? std::string{rawValue(*correction->activity)} : "ended";
}

TEST(AgentCourse, WeighsAReadingAgainstTheLastEvent)
{
    struct Row {
        const char* rule;
        AgentActivity current;
        Process process;
        AgentActivity claimed;
        std::optional<Seconds> since; // after the event
        Seconds now; // likewise
        const char* expected;
    };
    using enum Process;
    for (const auto& row :
        std::vector<Row>{
            {"more counts at once if it is newer than the event", idle, alive, working, 0.1s, 0.2s, "working"},
            {"one as old as the event is not newer", idle, alive, working, 0s, 2.9s, ""},
            {"an older one counts when the event has rested", idle, alive, working, -60s, 3s, "working"},
            {"but not before", idle, alive, working, -60s, 2.9s, ""},
            {"one without a date neither", idle, alive, working, {}, 2.9s, ""},
            {"not unless the process lives", idle, unknown, working, 5s, 10s, ""},
            {"waiting is more than idle", idle, alive, waitingForApproval, 5s, 6s, "waitingForApproval"},
            {"working more than waiting", waitingForApproval, alive, working, 5s, 6s, "working"},
            {"less counts when event and reading have rested", working, alive, idle, 1s, 3s, "idle"},
            {"not within 3 s of the event", working, alive, idle, -60s, 2.9s, ""},
            {"nor while it is younger than 2 s", working, alive, idle, 8.1s, 10s, ""},
            {"but then", working, alive, idle, 8s, 10s, "idle"},
            {"nor without a date, seen once", working, alive, idle, {}, 60s, ""},
            {"nor with a date in the future", working, alive, idle, 70s, 60s, ""},
            {"waiting is less than working", working, unknown, waitingForApproval, 1s, 3s, "waitingForApproval"},
            {"a file's word needs no process", working, unknown, idle, 1s, 3s, "idle"},
            {"what is known is no correction", working, alive, working, 1s, 3s, ""},
            {"after the clock was set back the event's age is not known", working, alive, idle, -5000s, -3600s, "idle"},
        }) {
        SCOPED_TRACE(row.rule);
        AgentCourse course;
        course.take(event(AgentSignal::working), nullptr);
        const AgentReading reading{.process = row.process,
            .claim = AgentReading::Claim{
                .activity = row.claimed, .since = row.since ? std::optional{noon + *row.since} : std::nullopt}};
        EXPECT_EQ(judged(course, reading, row.current, noon + row.now), row.expected);
    }
}

TEST(AgentCourse, BelievesWhatIsSeenTwice)
{
    const auto says = [](AgentActivity activity) {
        return AgentReading{.process = Process::alive, .claim = AgentReading::Claim{.activity = activity}};
    };
    AgentCourse course;
    course.take(event(AgentSignal::working), nullptr);
    EXPECT_EQ(judged(course, says(idle), working, noon + 4s), "");
    EXPECT_EQ(judged(course, says(idle), working, noon + 4.9s), "") << "too soon";
    EXPECT_EQ(judged(course, says(idle), working, noon + 5s), "idle");
    for (const auto& [between, expected] :
        {std::pair{says(working), ""}, {AgentReading{.process = Process::alive}, "idle"}}) {
        course.take(event(AgentSignal::working), nullptr);
        EXPECT_EQ(judged(course, says(idle), working, noon + 4s), "");
        EXPECT_EQ(judged(course, between, working, noon + 10s), "");
        EXPECT_EQ(judged(course, says(idle), working, noon + 20s), expected) << "what says nothing does not break it";
    }
    EXPECT_EQ(judged(course, says(waitingForApproval), working, noon + 30s), "") << "another word";
    course.take(event(AgentSignal::working, noon + 31s), nullptr);
    EXPECT_EQ(judged(course, says(waitingForApproval), working, noon + 40s), "") << "an event in between";
    course.take(event(AgentSignal::working), nullptr);
    EXPECT_EQ(judged(course, says(idle), working, noon + 4000s), "");
    EXPECT_EQ(judged(course, says(idle), working, noon + 400s), "") << "the clock was set back";
    EXPECT_EQ(judged(course, says(idle), working, noon + 410s), "idle");
}

TEST(AgentCourse, EndsTheSessionOfAProcessThatHasOutlivedAHook)
{
    const ProcessIdentity agent{.pid = 7, .start = 1}, wrapper{.pid = 8, .start = 2}, next{.pid = 9, .start = 3};
    const AgentReading gone{.process = Process::gone}, there{.process = Process::alive};
    AgentCourse course;
    course.take(event(AgentSignal::working, noon, wrapper), nullptr);
    EXPECT_EQ(judged(course, gone, working, noon + 60s), "") << "it may only have run the hook";
    course.take(event(AgentSignal::working, noon, next), nullptr);
    EXPECT_EQ(judged(course, gone, working, noon + 60s), "") << "as each time";
    EXPECT_EQ(judged(course, there, working, noon + 2.9s), "");
    EXPECT_EQ(judged(course, gone, working, noon + 60s), "") << "a hook may take that long";
    EXPECT_EQ(judged(course, there, working, noon + 3s), "");
    EXPECT_EQ(judged(course, gone, working, noon + 60s), "ended") << "seen alive since";
    for (int i = 0; i < 2; ++i)
        course.take(event(AgentSignal::working, noon, agent), nullptr);
    EXPECT_EQ(judged(course, gone, working, noon + 2.9s), "") << "its last event may still be on the way";
    EXPECT_EQ(judged(course, gone, working, noon + 3s), "ended") << "two events name it";
    auto certain = event(AgentSignal::working, noon, next);
    certain.origin.isProcessCertain = true;
    course.take(certain, nullptr);
    EXPECT_EQ(judged(course, gone, working, noon + 3s), "ended") << "the event is certain of it";
    EXPECT_EQ(judged(course, {}, working, noon + 1h), "") << "silence says nothing";
}

/// Appends to the only thread's file.
static void append(CodexThreads& threads, const std::string& text) { threads.all().front().rollout.take(text); }

static std::string rolloutLine(Seconds at, const char* type)
{
    return R"({"timestamp":")" + (noon + at).iso8601() + R"(","type":"event_msg","payload":{"type":")" + type
        + "\"}}\n";
}

TEST(CodexThreads, ShowAnAnswerByTheirGrowthOrByACommand)
{
    for (const bool byCommand : {false, true}) {
        CodexThreads threads;
        auto asked = event(AgentSignal::waitingForApproval, noon + 10s);
        asked.origin.transcript = "/r";
        threads.take(asked);
        EXPECT_FALSE(threads.claim()) << "no marker yet";
        append(threads, rolloutLine(0s, "task_started") + rolloutLine(11s, "token_count"));
        EXPECT_EQ(threads.claim(), (AgentReading::Claim{waitingForApproval, noon + 10s})) << "it belongs to asking";
        EXPECT_EQ(threads.unansweredSince(), noon + 10s);
        if (byCommand)
            threads.sawAnswer(noon + 12s);
        else
            append(threads, rolloutLine(12s, "token_count"));
        EXPECT_EQ(threads.claim(), (AgentReading::Claim{working, noon + 12s}));
        asked.date = noon + 20s;
        threads.take(asked);
        EXPECT_EQ(threads.claim(), (AgentReading::Claim{waitingForApproval, noon + 20s})) << "asked again";
        append(threads, rolloutLine(30s, "turn_aborted"));
        EXPECT_EQ(threads.claim(), (AgentReading::Claim{idle, noon + 30s}));
    }
}

TEST(CodexThreads, AreDoneOnlyIfEveryFileSaysSo)
{
    CodexThreads threads;
    for (const char* path : {"/r/a", "/r/b"}) {
        auto one = event(AgentSignal::working);
        one.origin.transcript = path;
        threads.take(one);
    }
    append(threads, rolloutLine(1s, "task_complete"));
    EXPECT_FALSE(threads.claim()) << "one says nothing";
    threads.all().back().rollout.take(rolloutLine(2s, "turn_aborted"));
    EXPECT_EQ(threads.claim(), (AgentReading::Claim{idle, noon + 2s}));
    append(threads, rolloutLine(3s, "task_started"));
    EXPECT_EQ(threads.claim(), (AgentReading::Claim{working, noon + 3s}));
}

TEST(CodexThreads, KeepNoMoreFilesThanTheyMay)
{
    CodexThreads threads;
    auto one = event(AgentSignal::working);
    one.origin.subagent = "a";
    for (std::size_t i = 0; i < 3 * CodexThreads::limit; ++i) {
        one.origin.transcript = "/r/" + std::to_string(i);
        threads.take(one);
        if (i != 0)
            threads.all().back().rollout.take(rolloutLine(1s, "task_complete"));
    }
    EXPECT_EQ(threads.all().size(), CodexThreads::limit);
    EXPECT_EQ(threads.all().front().path, "/r/0") << "what is not closed stays";
}

/// One agent whose truth, events and readings come by chance, and the session that they keep or end.
class RandomCourse final : public AgentEvidence {
public:
    explicit RandomCourse(unsigned seed)
        : random_{seed}
    {
        constexpr std::array graces{0s, 2s, 10s, 40s};
        grace_ = graces[random_() % graces.size()];
        dated_ = chance(0.9);
        condition_ = std::make_shared<AgentEndCondition>(tracker_, AgentPolicy{.graceDelay = grace_}, clock_, this);
        condition_->onChange = [this] { evaluate(); };
    }

    /// What was broken; empty if nothing was.
    std::string play()
    {
        condition_->sessionDidBegin(clock_.now());
        for (int step = 0; step < steps && !isOver_ && problem_.empty(); ++step) {
            clock_.at = noon + step * length;
            live();
            if (step % lookEvery == lookOffset_)
                lastLook();
            evaluate();
            checkStay();
        }
        return problem_;
    }

    void sessionDidBegin(const AgentPolicy&) override { }
    void lastLook() override
    {
        if (tracker_.sessions().empty())
            return;
        auto current = tracker_.sessions().front().activity;
        if (const auto remark = course_.takeRemark())
            tracker_.correct("codex:s", current = *remark->activity, remark->since);
        const auto correction = course_.judge(reading(), current, clock_.now());
        if (correction && correction->activity)
            tracker_.correct("codex:s", *correction->activity, correction->since);
        else if (correction)
            tracker_.endUnheard("codex:s");
    }
    void sessionDidEnd() override { }

private:
    static constexpr Seconds length = 0.5s;
    static constexpr int steps = 400, lookEvery = 20;
    struct Clock final : WallClock {
        Instant at = noon;
        Instant now() const override { return at; }
    };

    double fraction() { return static_cast<double>(random_()) / static_cast<double>(std::minstd_rand::max()); }
    bool chance(double probability) { return fraction() < probability; }
    Seconds between(double least, double most) { return Seconds{least + (most - least) * fraction()}; }
    Seconds since(std::optional<Instant> moment) const { return moment ? clock_.now() - *moment : Seconds{-1}; }

    void report(AgentSignal signal, bool leavesAgentsRunning = false)
    {
        auto one = event(signal, clock_.now(), ProcessIdentity{.pid = 7, .start = 1});
        one.origin.isProcessCertain = true;
        one.origin.leavesAgentsRunning = leavesAgentsRunning;
        const auto& sessions = tracker_.sessions();
        course_.take(one, sessions.empty() ? nullptr : &sessions.front());
        tracker_.record(one);
        if (const auto remark = course_.takeRemark())
            tracker_.correct("codex:s", *remark->activity, remark->since);
    }

    /// The truth takes a turn, its file follows within two seconds, its event may be lost.
    void live()
    {
        const auto now = clock_.now();
        if (!isDead_ && now >= nextTurn_) {
            if (nextTurn_ != Instant{} && chance(0.1)) {
                isDead_ = true;
                turnedAt_ = writtenAt_ = now;
                return;
            }
            truth_ = nextTurn_ == Instant{} || chance(0.5) ? working : chance(0.7) ? idle : waitingForApproval;
            turnedAt_ = now;
            writeAt_ = now + between(0, 2);
            nextTurn_ = now + between(3, 90);
            // Without a delay an agent that is taken for finished ends the session at once, so there what an event says
            // is true, and what is silent says so.
            if (truth_ == working && (chance(0.8) || grace_ < 3s))
                report(AgentSignal::working);
            else if (truth_ != working && chance(0.6))
                report(truth_ == idle ? AgentSignal::finished : AgentSignal::waitingForApproval);
        } else if (!isDead_ && chance(0.02)) {
            const bool isRight = truth_ == idle || grace_ < 3s;
            if (truth_ == working)
                report(isRight ? AgentSignal::finished : AgentSignal::sessionStarted, isRight);
            else if (since(turnedAt_) < 2.5s)
                report(AgentSignal::working); // the end of a tool, late
        }
        if (writeAt_ && now >= *writeAt_) {
            written_ = truth_;
            writtenAt_ = std::exchange(writeAt_, std::nullopt);
        }
        isBlip_ = chance(0.01);
        isTorn_ = chance(0.02);
        if (isBlip_ || isTorn_ || !isSaid())
            unbrokenSince_ = now;
    }

    AgentReading reading()
    {
        if (isDead_)
            return {.process = Process::gone};
        if (isTorn_)
            return {.process = Process::alive};
        auto claim = AgentReading::Claim{.activity = written_, .since = dated_ ? writtenAt_ : std::nullopt};
        if (isBlip_)
            claim = {.activity = idle, .since = clock_.now()};
        return {.process = Process::alive, .claim = claim};
    }

    bool isSaid() const { return isDead_ || (writtenAt_ && written_ == truth_); }

    void evaluate()
    {
        if (isOver_ || !condition_->evaluate(clock_.now()))
            return;
        isOver_ = true;
        if (!isDead_ && truth_ == working && since(unbrokenSince_) >= 20s)
            problem_ = "ended during work";
    }

    void checkStay()
    {
        const bool isDone = isDead_ || truth_ != working;
        const bool hasBegun = !std::holds_alternative<phase::WaitingForAgents>(condition_->phase());
        if (!isOver_ && hasBegun && isDone && isSaid() && since(std::max(writtenAt_, turnedAt_)) > 60s + grace_)
            problem_ = "stayed after the end";
    }

    std::minstd_rand random_;
    Clock clock_;
    Seconds grace_{};
    bool dated_ = true;
    int lookOffset_ = static_cast<int>(random_() % lookEvery);
    AgentTracker tracker_;
    AgentCourse course_;
    std::shared_ptr<AgentEndCondition> condition_;
    AgentActivity truth_ = idle;
    AgentActivity written_ = idle;
    Instant nextTurn_;
    std::optional<Instant> turnedAt_, writeAt_, writtenAt_;
    Instant unbrokenSince_;
    bool isDead_ = false, isBlip_ = false, isTorn_ = false, isOver_ = false;
    std::string problem_;
};

TEST(AgentCourse, NeitherEndsDuringWorkNorStaysAfterItInAHundredThousandCourses)
{
    for (unsigned seed = 1; seed <= 100'000; ++seed)
        ASSERT_EQ(RandomCourse{seed}.play(), "") << seed;
}

} // namespace vespra::courses
