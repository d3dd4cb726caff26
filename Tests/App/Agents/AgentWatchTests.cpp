#include "Host/ProcessFacts.h"
#include "Tests/Support/AgentCourses.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

using namespace vespra;

namespace {

constexpr auto claude = AgentKind::claudeCode, codex = AgentKind::codex;
constexpr double never = -1;

/// When a session with a grace delay of two minutes ends, in seconds.
struct Situation {
    int number;
    AgentKind agent;
    const char* steps;
    double byHooks; // alone
    double byEvidence; // which is the truth
    std::optional<double> byPayload; // of the events, where the files say nothing; absent: as by hooks
};

const std::vector<Situation> situations{
    // Subagents work on after Stop; older versions do not list them.
    {1, claude, "0 UserPromptSubmit;.2 busy;10 Stop+tasks;410 UserPromptSubmit;420 Stop;420.5 idle", 130, 540, 540},
    {1, claude, "0 UserPromptSubmit;.2 busy;10 Stop;410 UserPromptSubmit;420 Stop;420.5 idle", 130, 540, {}},
    // Compaction in the middle of a turn.
    {2,
        claude,
        "0 UserPromptSubmit;.2 busy;10 SessionStart+compact;400 PostToolUse;410 Stop;410.4 idle",
        130,
        530,
        530},
    {2, codex, "0 UserPromptSubmit;0 started;10 SessionStart+compact;410 Stop;410.3 complete", 130, 530, 530},
    // Approved, and the tool runs for ten minutes.
    {3,
        claude,
        "0 UserPromptSubmit;.2 busy;10 waiting;16 Notification+permission_prompt;30 busy;640 Stop;640.4 idle",
        136,
        760,
        {}},
    {3, codex, "0 UserPromptSubmit;0 started;10 PermissionRequest;40 output;640 Stop;640.3 complete", 130, 760, {}},
    // A turn that dies of an error.
    {4, codex, "0 UserPromptSubmit;0 started;102 complete", never, 230, {}},
    // Interrupted by the user; an older version has only the transcript.
    {5, claude, "0 UserPromptSubmit;.2 busy;102 idle", never, 230, {}},
    {5, claude, "0 UserPromptSubmit;102 interrupted", never, 230, {}},
    {5, codex, "0 UserPromptSubmit;0 started;102 Interrupt;102.1 aborted", 222, 222, {}},
    // A subagent outlives the turn, and its last event is not the last of its work.
    {6,
        codex,
        "0 UserPromptSubmit;0 started;4 sub-started;5 PostToolUse+sub;10 Stop;10.3 complete;332 sub-complete",
        130,
        460,
        {}},
    {6,
        codex,
        "0 UserPromptSubmit;0 started;4 sub-started;10 Stop;10.3 complete;100 PostToolUse+sub;132 sub-complete",
        never,
        260,
        {}},
    // Killed.
    {7, claude, "0 UserPromptSubmit;.2 busy;5 PostToolUse;55 kill", never, 180, 180},
    {7, codex, "0 UserPromptSubmit;0 started;5 PostToolUse;55 kill", never, 180, 180},
    // A warning at the start changes nothing.
    {8, codex, "0 SessionStart;1 UserPromptSubmit;1 started;10 Stop;10.3 complete", 130, 130, {}},
    // An error, and the user types before the agent says that it is idle, or not.
    {9, claude, "0 UserPromptSubmit;.2 busy;102 idle", never, 230, {}},
    {9, claude, "0 UserPromptSubmit;.2 busy;102 idle;162 Notification+idle_prompt", 282, 230, {}},
    // Approved, and the tool fails.
    {10,
        claude,
        "0 UserPromptSubmit;.2 busy;10 waiting;16 Notification+permission_prompt;30 busy;400 PostToolUse;410 "
        "Stop;410.5 idle",
        136,
        530,
        {}},
    // It waits for the user without a word.
    {11, claude, "0 UserPromptSubmit;.2 busy;12 waiting;12 Notification+elicitation_url_dialog", never, 140, {}},
    {12, claude, "0 UserPromptSubmit;.2 busy;10 waiting;10 Notification+agent_needs_input", 130, 130, {}},
    // It claims to be idle while subagents run.
    {13,
        claude,
        "0 UserPromptSubmit;.2 busy;5 Stop+tasks;65 Notification+idle_prompt;402 UserPromptSubmit;410 Stop;410.5 idle",
        125,
        530,
        185},
    // Another hook keeps it going.
    {14, claude, "0 UserPromptSubmit;.2 busy;10 Stop;14 PostToolUse;31 Stop;31.5 idle", 151, 151, {}},
    // The end of the session comes late, its beginning with the first prompt.
    {15, codex, "0 UserPromptSubmit;0 started;10 Stop;10.3 complete;70 SessionEnd", 130, 130, {}},
    {16, codex, "0 SessionStart;.1 UserPromptSubmit;.1 started;10 Stop;10.3 complete", 130, 130, {}},
    // The process turns to another session.
    {17, claude, "0 UserPromptSubmit;.2 busy;10 Stop;10.5 idle;20 other", 130, 130, {}},
    {17, claude, "0 UserPromptSubmit;.2 busy;52 other", never, 180, {}},
    // A command of the user's own.
    {18, claude, "0 UserPromptSubmit;.2 busy;10 Stop;10.5 idle;51 busy;53 Stop;53.3 idle", 130, 130, {}},
};

double end(const Situation& situation, AgentCourses::Evidence evidence)
{
    AgentCourses course{situation.agent, evidence, 2min};
    course.play(situation.steps);
    return course.endedAt ? course.endedAt->count() : never;
}

TEST(AgentWatch, EndsTheSessionWhenTheWorkEndsInEverySituation)
{
    using enum AgentCourses::Evidence;
    for (const auto& situation : situations) {
        SCOPED_TRACE(testing::Message() << situation.number << ": " << situation.steps);
        EXPECT_NEAR(end(situation, none), situation.byHooks, 0.001);
        EXPECT_NEAR(end(situation, whole), situation.byEvidence, 0.001);
        for (const auto silent : {missing, torn, unknown})
            EXPECT_NEAR(end(situation, silent), situation.byPayload.value_or(situation.byHooks), 0.001)
                << static_cast<int>(silent);
    }
}

TEST(AgentWatch, LooksALastTimeWhateverTheGraceDelay)
{
    struct Row {
        const char* rule;
        AgentKind agent;
        Seconds grace;
        const char* steps;
        double end;
    };
    for (const auto& row : std::vector<Row>{
             {"the end is not moved", claude, 0s, "0 UserPromptSubmit;.2 busy;10 Stop;10.5 idle", 10},
             {"agents are left",
                 claude,
                 0s,
                 "0 UserPromptSubmit;.2 busy;10 Stop+tasks;102 UserPromptSubmit;105 Stop",
                 105},
             {"it is compacted", claude, 0s, "0 UserPromptSubmit;.2 busy;10 SessionStart+compact;105 Stop", 105},
             {"busy since", claude, 2s, "0 UserPromptSubmit;.2 busy;11 Stop;12 busy;102 idle", 112},
             {"a subagent's file is open",
                 codex,
                 0s,
                 "0 UserPromptSubmit;0 started;4 sub-started;5 PostToolUse+sub;11 Stop;11.3 complete;52 sub-complete",
                 60},
             {"unanswered", codex, 20s, "0 UserPromptSubmit;0 started;10 PermissionRequest", 30},
             {"a hook", codex, 20s, "0 UserPromptSubmit;0 started;10 PermissionRequest;10.4 child", 30},
             {"a command",
                 codex,
                 20s,
                 "0 UserPromptSubmit;0 started;10 PermissionRequest;25 child;105 Stop;105 complete",
                 125},
             {"a command",
                 codex,
                 34s,
                 "0 UserPromptSubmit;0 started;10 PermissionRequest;25 child;105 Stop;105 complete",
                 139},
             {"it would show", codex, 35s, "0 UserPromptSubmit;0 started;10 PermissionRequest;25 child;105 Stop", 45},
             {"others work while one asks",
                 codex,
                 120s,
                 "0 UserPromptSubmit;0 started;4 sub-started;5 PostToolUse+sub;10 PermissionRequest;310 sub-complete",
                 440},
             {"another's event answers no question",
                 codex,
                 120s,
                 "0 UserPromptSubmit;0 started;4 sub-started;10 PermissionRequest;12 PostToolUse+sub;20 sub-complete",
                 150},
             {"what the killed left open counts no more",
                 codex,
                 120s,
                 "0 UserPromptSubmit;0 started;4 sub-started;5 PostToolUse+sub;12 restart;15 SessionStart+resume;"
                 "15 UserPromptSubmit;15 started;30 Stop;30.3 complete",
                 150},
             {"much at once is an answer too",
                 codex,
                 120s,
                 "0 UserPromptSubmit;0 started;10 PermissionRequest;40 much;640 Stop;640.3 complete",
                 760},
             {"gone at the end", codex, 20s, "0 UserPromptSubmit;0 started;10 PermissionRequest;25 child;27 kill", 30},
         }) {
        SCOPED_TRACE(row.steps);
        AgentCourses course{row.agent, AgentCourses::Evidence::whole, row.grace};
        course.play(row.steps);
        EXPECT_NEAR(course.endedAt.value_or(Seconds{never}).count(), row.end, 0.001) << row.rule;
    }
}

TEST(AgentWatch, TellsSinceWhenByTheFile)
{
    AgentCourses course{claude, AgentCourses::Evidence::whole, 15min};
    const auto begin = course.time().now();
    course.play("0 UserPromptSubmit;.2 busy;10 Stop");
    EXPECT_NEAR((course.tracker().sessions().front().activitySince - begin).count(), 0.2, 0.001);
    EXPECT_EQ(course.corrections, "working ");
    EXPECT_EQ(course.watch().evidence("claude:s"), AgentEvidenceKind::statusFile);
}

TEST(AgentWatch, OpensNothingAndSleepsWithoutAnAgentSessionOrAgents)
{
    VirtualTime time;
    SimulatedAgentFiles files;
    SimulatedAgentProcesses processes{time};
    AgentTracker tracker;
    AgentWatch watch{tracker, {.files = files, .processes = processes, .clock = time, .tasks = time}};
    AgentEvent event{.sessionID = "s", .signal = AgentSignal::working, .date = time.now()};
    event.origin.transcript = "/h/projects/p/s.jsonl";
    event.origin.process = ProcessIdentity{.pid = 7, .start = 1};
    event.origin.isProcessCertain = true;
    processes.alive.emplace(7, 1);
    watch.record(event);
    watch.look();
    EXPECT_EQ(time.pendingTasks() + files.reads, 0U) << "no agent session";
    watch.sessionDidBegin({});
    EXPECT_EQ(time.pendingTasks(), 1U);
    EXPECT_GT(files.reads, 0U) << "it looks at once";
    processes.alive.clear();
    time.sleep(1h);
    EXPECT_TRUE(tracker.sessions().empty()) << "and at the wake-up";
    EXPECT_EQ(time.pendingTasks(), 0U) << "no agent";
    watch.record(event);
    EXPECT_EQ(time.pendingTasks(), 1U);
    watch.sessionDidEnd();
    EXPECT_EQ(time.pendingTasks(), 0U) << "no agent session any more";
}

TEST(SystemAgentFiles, ReadRegularFilesOnlyAndNeverBlock)
{
    const TemporaryDirectory folder;
    const std::string file = folder / "file", link = folder / "link", pipe = folder / "pipe";
    std::ofstream{file} << "0123456789";
    std::filesystem::create_symlink(file, link);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    auto& files = systemAgentFiles();
    const auto facts = files.facts(link);
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->size, 10U);
    EXPECT_EQ(files.read(link, *facts, 8, 100), "89");
    EXPECT_EQ(files.read(link, *facts, 20, 100), "");
    for (const std::string& other : {pipe, folder.path().string(), std::string{"/dev/zero"}, std::string{"/dev/tty"}}) {
        EXPECT_FALSE(files.facts(other)) << other;
        EXPECT_FALSE(files.read(other, *facts, 0, 10)) << "it took the file's place: " << other;
    }
    std::ofstream{folder / "another"} << "x";
    EXPECT_FALSE(files.read(folder / "another", *facts, 0, 10));
    EXPECT_EQ(files.names(folder.path(), 3).size(), 3U);
    EXPECT_TRUE(files.names(file, 3).empty());
}

TEST(SystemAgentProcesses, KnowTheLivingFromTheDeadAndTheirSuccessors)
{
    using enum AgentReading::Process;
    auto& processes = systemAgentProcesses();
    const auto child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    const ProcessIdentity there{.pid = child, .start = processFacts(child).value().start, .space = processSpace()};
    const ProcessIdentity self{.pid = getpid(), .start = processFacts(getpid()).value().start};
    EXPECT_EQ(processes.state(there), alive);
    EXPECT_EQ(processes.state({.pid = child, .start = there.start + 1}), gone) << "another has its number";
    EXPECT_EQ(processes.state({.pid = child, .start = there.start, .space = there.space + 1}), unknown);
    EXPECT_TRUE(processes.hasChildYoungerThan(self, 1min));
    EXPECT_FALSE(processes.hasChildYoungerThan(self, 0s));
    EXPECT_FALSE(processes.hasChildYoungerThan(there, 1min));
    kill(child, SIGKILL);
    siginfo_t ended{};
    waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT);
    EXPECT_EQ(processes.state(there), gone) << "nobody has fetched what is left of it";
    EXPECT_FALSE(processes.hasChildYoungerThan(self, 1min));
    waitpid(child, nullptr, 0);
    EXPECT_EQ(processes.state(there), gone);
}

} // namespace
