#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"

#include <gtest/gtest.h>

#include <ranges>

using namespace vespra;
using namespace std::string_literals;

namespace {

const Instant now = Instant::fromISO8601("2026-05-01T12:00:00Z").value();

TEST(AgentEvent, ComesFromTheHookInput)
{
    for (const auto& [input, signal] :
        std::vector<std::pair<const char*, std::optional<AgentSignal>>>{
            {R"({"session_id":"s","hook_event_name":"SessionStart"})", AgentSignal::sessionStarted},
            {R"({"session_id":"s","hook_event_name":"UserPromptSubmit"})", AgentSignal::working},
            {R"({"session_id":"s","hook_event_name":"PostToolUse"})", AgentSignal::working},
            {R"({"session_id":"s","hook_event_name":"PermissionRequest"})", AgentSignal::waitingForApproval},
            {R"({"session_id":"s","hook_event_name":"Stop"})", AgentSignal::finished},
            {R"({"session_id":"s","hook_event_name":"Interrupt"})", AgentSignal::finished},
            {R"({"session_id":"s","hook_event_name":"SessionEnd"})", AgentSignal::sessionEnded},
            {R"({"session_id":"s","hook_event_name":"PreToolUse"})", {}},
            {R"({"session_id":"s","hook_event_name":"stop"})", {}},
            {R"({"session_id":"s","hook_event_name":"Stop "})", {}},
            // Not usable
            {R"({"session_id":"","hook_event_name":"Stop"})", {}},
            {R"({"session_id":7,"hook_event_name":"Stop"})", {}},
            {R"({"session_id":null,"hook_event_name":"Stop"})", {}},
            {R"({"hook_event_name":"Stop"})", {}},
            {R"({"session_id":"s"})", {}},
            {R"({"session_id":"s","hook_event_name":["Stop"]})", {}},
            {R"([{"session_id":"s","hook_event_name":"Stop"}])", {}},
            {R"({"inner":{"session_id":"s","hook_event_name":"Stop"}})", {}},
            {R"({"session_id":"s","hook_event_name":"Stop")", {}},
            {"\"Stop\"", {}},
            {"", {}},
            {"{\"session_id\":\"\xff\",\"hook_event_name\":\"Stop\"}", {}},
            {R"({"session_id":"\ud83d","hook_event_name":"Stop"})", {}},
            // What is no text in UTF-8 is only left out
            {R"({"session_id":"s","hook_event_name":"Stop","cwd":["\ud83d"],"message":1e999})", AgentSignal::finished},
            {R"({"session_id":"s","hook_event_name":"Stop","cwd":"/x","cwd":"/caf\udce9"})", AgentSignal::finished},
            // Whatever else stands in the object does not matter
            {R"({"tool_input":{"session_id":"x","hook_event_name":"Stop"},"session_id":"s","hook_event_name":"PostToolUse",
                 "transcript_path":null,"list":[{"session_id":"y"}],"big":1e300,"yes":true})",
                AgentSignal::working},
            {R"({"hook_event_name":"SessionStart","hook_event_name":"Stop","session_id":"s"})", AgentSignal::finished},
            {R"({"session_id":"s","hook_event_name":"Stop","hook_event_name":1})", {}},
            {"\xEF\xBB\xBF{\"session\\u005fid\":\"\\u0073\",\"hook_event_name\":\"St\\u006fp\"}\n",
                AgentSignal::finished},
        }) {
        SCOPED_TRACE(input);
        std::optional<AgentEvent> expected;
        if (signal)
            expected = AgentEvent{.agent = AgentKind::codex, .sessionID = "s", .signal = *signal, .date = now};
        EXPECT_EQ(agentEvent(input, AgentKind::codex, now), expected);
    }
}

TEST(AgentEvent, NeedsOnlyTheFormOfWhatIsNotWanted)
{
    const auto isRead = [](const std::string& rest) {
        return agentEvent(R"({"session_id":"s","hook_event_name":"Stop")" + rest, AgentKind::codex, now).has_value();
    };
    const std::string opened(1'000'000, '['), closed(1'000'000, ']');
    for (const std::string& rest : {R"(,"cut":"\ud83d","\ud83d":{"n":[1e999,-0,{},"\udc00\u00"]}} )"s,
             ",\"bytes\" : \"\xFF\x01\xF0\x9F\" , \"x\":\"\\x\"}"s,
             R"(,"numbers":[0,-1.50,1E+2,2e-3,12345678901234567890],"words":[true,false,null],"lists":[[],[{}]]})"s,
             ",\"deep\":" + opened + closed + "}"})
        EXPECT_TRUE(isRead(rest)) << rest.substr(0, 80);
    constexpr std::string_view wrong
        = R"(~}}~} x~,}~ "a":1}~,"a"}~,"a":}~,a:1}~,"a":tru}~,"a":01}~,"a":-}~,"a":1.}~,"a":.5})"
          R"(~,"a":1e}~,"a":[1,]}~,"a":[1}]~,"a":[1 2]}~,"a":{"b"}}~,"a":{"b":1,}}~,"a":{1:1}})"
          R"(~,"a":"\"}~,"a":"\)";
    for (const auto rest : std::views::split(wrong, '~'))
        EXPECT_FALSE(isRead({rest.begin(), rest.end()})) << std::string_view{rest.begin(), rest.end()};
    EXPECT_FALSE(isRead(",\"deep\":" + opened));
}

TEST(AgentEvent, OfANotificationFollowsItsTypeAndElseItsMessage)
{
    for (const auto& [members, signal] : std::vector<std::pair<std::string, std::optional<AgentSignal>>>{
             {R"("notification_type":"permission_prompt","message":"\ud83d")", AgentSignal::waitingForApproval},
             {R"("notification_type":"agent_needs_input")", AgentSignal::waitingForApproval},
             {R"("notification_type":"elicitation_dialog")", AgentSignal::waitingForApproval},
             {R"("notification_type":"idle_prompt","message":"needs your permission")", AgentSignal::finished},
             {R"("notification_type":"agent_completed")", AgentSignal::finished},
             {R"("notification_type":"auth_success","message":"needs your permission")", {}},
             {R"("notification_type":"","message":"needs your permission")", {}},
             {R"("message":"Claude needs your PERMISSION to use Bash")", AgentSignal::waitingForApproval},
             {R"("message":"waiting for input")", {}},
             {R"("message":["permission"])", {}},
             {R"("title":"permission")", {}},
         }) {
        SCOPED_TRACE(members);
        const auto input = R"({"session_id":"s","hook_event_name":"Notification",)" + members + "}";
        const auto event = agentEvent(input, AgentKind::claudeCode, now);
        EXPECT_EQ(event ? std::optional{event->signal} : std::nullopt, signal);
    }
}

TEST(AgentEvent, IsOneLineOfJSON)
{
    AgentEvent event{.agent = AgentKind::claudeCode,
        .sessionID = "a\n\"b\"",
        .cwd = "/tmp/é",
        .signal = AgentSignal::waitingForApproval,
        .date = Instant::fromReferenceDate(Seconds{0.5})};
    EXPECT_EQ(encoded(event),
        R"({"agent":"claude","sessionID":"a\n\"b\"","cwd":"/tmp/é","signal":"waitingForApproval","date":0.5})");
    EXPECT_EQ(decodedAgentEvent(encoded(event)).value(), event);
    event.cwd.reset();
    EXPECT_EQ(encoded(event), R"({"agent":"claude","sessionID":"a\n\"b\"","signal":"waitingForApproval","date":0.5})");
    EXPECT_EQ(decodedAgentEvent(encoded(event)).value(), event);
}

TEST(AgentEvent, CarriesItsOriginAsFarAsItCanBeRead)
{
    const std::string event = R"({"agent":"codex","sessionID":"s","signal":"finished","date":1)";
    AgentEvent whole = decodedAgentEvent(event + "}").value();
    whole.origin = {.process = ProcessIdentity{.pid = 7, .start = 1'795'305'269'909'000, .space = 4'026'531'836},
        .isProcessCertain = true,
        .transcript = "/t",
        .subagent = "a",
        .isCompaction = true,
        .leavesAgentsRunning = true};
    EXPECT_EQ(decodedAgentEvent(encoded(whole)).value(), whole);
    for (const auto* rest : {R"("process":7)",
             R"("process":{})",
             R"("process":{"pid":7})",
             R"("process":[7,8])",
             R"("process":{"pid":0,"start":1})",
             R"("process":{"pid":-7,"start":1})",
             R"("process":{"pid":1e3,"start":1})",
             R"("process":{"pid":2147483648,"start":1})",
             R"("process":{"pid":7,"start":"1"})",
             R"("transcript":null)",
             R"("transcript":"")",
             R"("subagent":["a"])",
             R"("isCompaction":1)",
             R"("leavesAgentsRunning":"true")"})
        EXPECT_EQ(decodedAgentEvent(event + "," + rest + "}").value().origin, AgentOrigin{}) << rest;
}

TEST(AgentEvent, SaysWhetherAgentsOfItsAreLeftRunning)
{
    struct Row {
        const char* tasks;
        bool expected;
    };
    for (const auto& [tasks, expected] : std::vector<Row>{{R"([{"type":"subagent","status":"running"}])", true},
             {R"([7,{"type":"shell","status":"running"},{"type":"workflow","status":"running"}])", true},
             {R"([{"type":"shell","status":"running"}])", false},
             {R"([{"type":"subagent","status":"completed"}])", false},
             {R"([{"type":"subagent"}])", false},
             {R"([{"type":"dream","status":"running"}])", false},
             {R"({"type":"subagent","status":"running"})", false},
             {R"(["subagent"])", false},
             {"[]", false},
             {"null", false}}) {
        const auto input = [&](const char* name) {
            return std::string{R"({"session_id":"s","hook_event_name":")"} + name + R"(","background_tasks":)" + tasks
                + "}";
        };
        EXPECT_EQ(agentEvent(input("Stop"), AgentKind::claudeCode, now)->origin.leavesAgentsRunning, expected) << tasks;
        EXPECT_FALSE(agentEvent(input("PostToolUse"), AgentKind::claudeCode, now)->origin.leavesAgentsRunning);
    }
}

TEST(AgentEvent, DecodingNamesWhatIsWrong)
{
    for (const auto& [line, problem] : std::vector<std::pair<const char*, const char*>>{
             {"", "expected JSON"},
             {"[]", "expected an object"},
             {R"({"sessionID":"s","signal":"working","date":1})", "agent: is missing"},
             {R"({"agent":"codex","signal":"working","date":1})", "sessionID: is missing"},
             {R"({"agent":"codex","sessionID":"s","date":1})", "signal: is missing"},
             {R"({"agent":"codex","sessionID":"s","signal":"working"})", "date: is missing"},
             {R"({"agent":"Codex"})", R"(agent: expected one of "claude" "codex")"},
             {R"({"agent":"codex","sessionID":"s","signal":"working","date":"1"})", "date: expected a number"},
             {R"({"agent":"codex","sessionID":"","signal":"working","date":1})", "sessionID: must not be empty"},
             {R"({"agent":"codex","sessionID":"s","cwd":1,"signal":"working","date":1})", "cwd: expected a text"},
         }) {
        const auto event = decodedAgentEvent(line);
        ASSERT_FALSE(event) << line;
        EXPECT_EQ(event.error().description(), problem);
    }
}

TEST(HookInputParser, IsCompleteWithTheLastBracketHoweverTheInputIsCut)
{
    using enum HookInputParser::Progress;
    for (const std::string_view input : {
             R"({})",
             "\xEF\xBB\xBF { }",
             R"( {"a":{"b":[1,{"c":2}, -0.5e+7 ]}})",
             R"({"text":"}]{[","cwd":"0123456789\"}01234567","end":"\\"})",
             R"({"\\\"}":"\u007d","é":"}","c\u0077d":"/","message":{"cwd":[true , null]}})",
         }) {
        SCOPED_TRACE(input);
        for (std::size_t cut = 0; cut < input.size(); ++cut) {
            HookInputParser parser;
            ASSERT_EQ(parser.add(input.substr(0, cut)), incomplete) << "after " << cut;
            ASSERT_EQ(parser.add(input.substr(cut)), complete) << "cut at " << cut;
            ASSERT_EQ(parser.input(), parsedHookInput(input)) << "cut at " << cut;
            ASSERT_EQ(parser.add("\n"), complete);
            ASSERT_EQ(parser.add("{"), invalid);
        }
    }
    for (const std::string_view input : {"", " \n", "\xEF\xBB", R"({"a":"\"})", R"({"a":tru)"})
        EXPECT_EQ(HookInputParser{}.add(input), incomplete) << input;
    constexpr std::string_view wrong = R"([]~null~{[}~{"a":tru}~{"a":1.}~{"a" "b"}~{"a":[}}~{"a":1,}~)"
                                       "\xEF{}~ \xEF\xBB\xBF{}";
    for (const auto input : std::views::split(wrong, '~'))
        EXPECT_EQ(HookInputParser{}.add({input.begin(), input.end()}), invalid) << std::string_view{input};
}

} // namespace
