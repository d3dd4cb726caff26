#include "Tests/Support/AgentCourses.h"

#include <gtest/gtest.h>

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
    {2, claude, "0 UserPromptSubmit;.2 busy;10 SessionStart+compact;400 PostToolUse;410 Stop;410.4 idle", 130, 530, 530},
    {2, codex, "0 UserPromptSubmit;0 started;10 SessionStart+compact;410 Stop;410.3 complete", 130, 530, 530},
    // Approved, and the tool runs for ten minutes.
    {3, claude, "0 UserPromptSubmit;.2 busy;10 waiting;16 Notification+permission_prompt;30 busy;640 Stop;640.4 idle", 136,
        760, {}},
    {3, codex, "0 UserPromptSubmit;0 started;10 PermissionRequest;40 output;640 Stop;640.3 complete", 130, 760, {}},
    // A turn that dies of an error.
    {4, codex, "0 UserPromptSubmit;0 started;102 complete", never, 230, {}},
    // Interrupted by the user; an older version has only the transcript.
    {5, claude, "0 UserPromptSubmit;.2 busy;102 idle", never, 230, {}},
    {5, claude, "0 UserPromptSubmit;102 interrupted", never, 230, {}},
    {5, codex, "0 UserPromptSubmit;0 started;102 Interrupt;102.1 aborted", 222, 222, {}},
    // A subagent outlives the turn, and its last event is not the last of its work.
    {6, codex, "0 UserPromptSubmit;0 started;4 sub-started;5 PostToolUse+sub;10 Stop;10.3 complete;332 sub-complete", 130,
        460, {}},
    {6, codex, "0 UserPromptSubmit;0 started;4 sub-started;10 Stop;10.3 complete;100 PostToolUse+sub;132 sub-complete",
        never, 260, {}},
    // Killed.
    {7, claude, "0 UserPromptSubmit;.2 busy;5 PostToolUse;55 kill", never, 180, 180},
    {7, codex, "0 UserPromptSubmit;0 started;5 PostToolUse;55 kill", never, 180, 180},
    // A warning at the start changes nothing.
    {8, codex, "0 SessionStart;1 UserPromptSubmit;1 started;10 Stop;10.3 complete", 130, 130, {}},
    // An error, and the user types before the agent says that it is idle, or not.
    {9, claude, "0 UserPromptSubmit;.2 busy;102 idle", never, 230, {}},
    {9, claude, "0 UserPromptSubmit;.2 busy;102 idle;162 Notification+idle_prompt", 282, 230, {}},
    // Approved, and the tool fails.
    {10, claude,
        "0 UserPromptSubmit;.2 busy;10 waiting;16 Notification+permission_prompt;30 busy;400 PostToolUse;410 Stop;410.5 idle",
        136, 530, {}},
    // It waits for the user without a word.
    {11, claude, "0 UserPromptSubmit;.2 busy;12 waiting;12 Notification+elicitation_url_dialog", never, 140, {}},
    {12, claude, "0 UserPromptSubmit;.2 busy;10 waiting;10 Notification+agent_needs_input", 130, 130, {}},
    // It claims to be idle while subagents run.
    {13, claude, "0 UserPromptSubmit;.2 busy;5 Stop+tasks;65 Notification+idle_prompt;402 UserPromptSubmit;410 Stop;410.5 idle",
        125, 530, 185},
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

} // namespace
