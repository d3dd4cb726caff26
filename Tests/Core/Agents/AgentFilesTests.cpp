#include "Core/Agents/ClaudeStatus.h"
#include "Core/Agents/ClaudeTranscript.h"
#include "Core/Agents/CodexRollout.h"
#include "Core/Agents/FollowedFile.h"

#include <gtest/gtest.h>

using namespace vespra;

static std::optional<Instant> milliseconds(std::int64_t count) { return Instant{std::chrono::milliseconds{count}}; }

TEST(ClaudeStatus, ReadsTheFirstCompleteValueAndKnowsItsWords)
{
    using enum AgentActivity;
    const std::string head = R"({"pid":7,"sessionId":"s","procStart":"303012","cwd":"}\"{",)";
    struct Row {
        std::string rest;
        std::optional<AgentActivity> activity;
        std::optional<Instant> since;
    };
    for (const auto& row : std::vector<Row>{
             {R"("status":"busy","updatedAt":2000,"statusUpdatedAt":1000})", working, milliseconds(1000)},
             {R"("status":"busy","updatedAt":2000})", working, milliseconds(2000)},
             {R"("status":"idle","updatedAt":2000}"updatedAt":1000})", idle, milliseconds(2000)},
             {R"("status":"shell"})", idle, {}},
             {R"("status":"waiting","waitingFor":"approve Bash"})", waitingForApproval, {}},
             {R"("status":"waiting","waitingFor":"dialog open"})", {}, {}},
             {R"("status":"Busy","updatedAt":-1})", {}, {}},
             {R"("status":["busy"],"updatedAt":1e300})", {}, {}},
             {R"("x":[{}]})", {}, {}},
         }) {
        SCOPED_TRACE(row.rest);
        EXPECT_EQ(claudeStatus(head + row.rest),
            (ClaudeStatus{
                .pid = 7, .sessionID = "s", .processStart = 303'012, .activity = row.activity, .since = row.since}));
        EXPECT_FALSE(claudeStatus((head + row.rest).substr(0, row.rest.size() + 20))) << "torn";
    }
    for (const char* wrong : {"",
             "{}",
             "[]",
             "{",
             "}",
             R"({"pid":7,"sessionId":""})",
             R"({"pid":0,"sessionId":"s"})",
             R"({"pid":7.5,"sessionId":"s"})",
             R"({"pid":99999999999,"sessionId":"s"})",
             R"(7{"pid":7,"sessionId":"s"})",
             "{\"pid\":7,\"sessionId\":\"s\",\"x\":\"\xFF\"}"})
        EXPECT_FALSE(claudeStatus(wrong)) << wrong;
    for (const char* started : {"Sun Nov 22 05:00:00 2026", "", "-1", "7x", "99999999999999999999"})
        EXPECT_FALSE(
            claudeStatus(R"({"pid":7,"sessionId":"s","procStart":")" + std::string{started} + "\"}")->processStart);
}

TEST(ClaudeStatus, LiesBesideTheProjects)
{
    EXPECT_EQ(claudeStatusFolder("/h/.claude/projects/-p/s.jsonl"), "/h/.claude/sessions");
    for (const char* other : {"",
             "/",
             "s.jsonl",
             "/projects",
             "h/projects/p/s.jsonl",
             "/h/projects/p/s.json",
             "/h/projects/p/s/subagents/agent-1.jsonl",
             "/h/myprojects/p/s.jsonl"})
        EXPECT_FALSE(claudeStatusFolder(other)) << other;
}

static std::string timedLine(const std::string& rest) { return R"({"timestamp":"2026-01-01T00:00:0)" + rest + "\n"; }

TEST(CodexRollout, KnowsATurnByItsMarkersOnly)
{
    using enum CodexRollout::Turn;
    const auto marker
        = [](const char* type) { return R"(1Z","type":"event_msg","payload":{"type":")" + std::string{type}; };
    struct Row {
        std::string text;
        CodexRollout::Turn turn;
    };
    for (const auto& row : std::vector<Row>{
             {timedLine(marker("task_started\"}}")), open},
             {timedLine(marker("task_complete\",\"error\":{}}}")), closed},
             {timedLine(marker("turn_aborted\"}}")), closed},
             {timedLine(R"(1Z","ordinal":7,"type":"event_msg","payload":{"type":"task_started","x":")"
                  + std::string(9999, 'x') + "\"}}"),
                 open},
             {timedLine(marker("task_started_again\"}}")), unknown},
             {timedLine(marker("agent_message\"}}")), unknown},
             {timedLine(R"(1Z","type":"event","payload":{"type":"task_started"}})"), unknown},
             {timedLine(R"(1Z","x":{},"type":"event_msg","payload":{"type":"task_started"}})"), unknown},
             {timedLine(R"(1Z","text":"\"type\":\"event_msg\",\"payload\":{\"type\":\"task_started\"")"), unknown},
             {timedLine(marker("task_started\"}}")) + timedLine(marker("turn_aborted\"}}")), closed},
         }) {
        SCOPED_TRACE(row.text.substr(0, 120));
        CodexRollout rollout;
        for (const auto& byte : row.text)
            rollout.take({&byte, 1});
        EXPECT_EQ(rollout.turn(), row.turn);
        CodexRollout inside;
        inside.restart(true);
        inside.take(row.text);
        EXPECT_EQ(inside.turn(), row.text.find('\n') + 1 == row.text.size() ? unknown : row.turn);
        CodexRollout unfinished;
        unfinished.take(row.text.substr(0, row.text.find('\n')));
        EXPECT_EQ(unfinished.turn(), unknown) << "without its line feed";
    }
}

TEST(ClaudeTranscript, KnowsInterruptionsAndErrorsAndNothingElse)
{
    const auto line = [](const std::string& rest) { return R"({"timestamp":"2026-01-01T00:00:01Z",)" + rest + "}\n"; };
    const auto text = [](const char* text) {
        return R"("type":"user","message":{"content":[{"type":"text","text":")" + std::string{text} + "\"}]}";
    };
    const auto interruption = line(text("[Request interrupted by user for tool use]"));
    struct Row {
        std::string text;
        bool hasEnded;
    };
    for (const auto& row :
        std::vector<Row>{
            {interruption, true},
            {line(R"("type":"assistant","isApiErrorMessage":true)"), true},
            {line(R"("type":"assistant","isApiErrorMessage":false)"), false},
            {line(text("What is [Request interrupted by user]?")), false},
            {line(
                 R"("type":"assistant","message":{"content":[{"type":"text","text":"[Request interrupted by user]"}]})"),
                false},
            {line(R"("isSidechain":true,)" + text("[Request interrupted by user]")), false},
            {interruption + line(text("Go on")), false},
            {interruption + line(R"("type":"system")"), true},
            {line(R"("type":"user","message":"[Request interrupted by user]")"), false},
            {"{\"type\":\"user\",[Request interrupted by user\n", false},
        }) {
        ClaudeTranscript transcript;
        transcript.take(row.text);
        EXPECT_EQ(transcript.endedAt().has_value(), row.hasEnded) << row.text;
    }
}

TEST(FollowedFile, IsReadFromItsEndAndThenWhereItHasGrown)
{
    constexpr auto tail = FollowedFile::tail, limit = FollowedFile::limit;
    using Piece = FollowedFile::Piece;
    FollowedFile file;
    EXPECT_EQ(file.next({.inode = 1, .size = tail}), (Piece{0, tail, true}));
    EXPECT_EQ(file.next({.inode = 1, .size = 50'000'000}), (Piece{50'000'000 - tail, tail, true}));
    const FileFacts first{.inode = 1, .size = 1000};
    file.didRead(first, *file.next(first), 900);
    EXPECT_EQ(file.next(first), (Piece{900, 100, false})) << "it had not been read to its end";
    file.didRead(first, *file.next(first), 100);
    EXPECT_FALSE(file.next(first));
    EXPECT_EQ(file.next({.inode = 1, .size = 1000 + limit}), (Piece{1000, limit, false}));
    EXPECT_EQ(file.next({.inode = 1, .size = 1001 + limit}), (Piece{1001 + limit - tail, tail, true, true}))
        << "too much";
    EXPECT_EQ(file.next({.inode = 1, .size = 999}), (Piece{0, 999, true})) << "it has shrunk";
    EXPECT_EQ(file.next({.inode = 2, .size = 1000}), (Piece{0, 1000, true})) << "it is another";
}
