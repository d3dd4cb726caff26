#include "App/Model/AgentFacts.h"

#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using panelFacts::AgentStatus;
    using AgentFacts = LaunchedApplication;

    TEST(AgentLines, SayInAWordHowLongAgo)
    {
        for (const auto& [elapsed, text, step] : std::vector<std::tuple<Seconds, const char*, Seconds>>{
                 {-3s, "now", 1s},
                 {4.9s, "now", 1s},
                 {5s, "5s", 1s},
                 {59.9s, "59s", 1s},
                 {60s, "1m", 60s},
                 {65min + 59s, "1h 5m", 60s},
             }) {
            EXPECT_EQ(panelFacts::sinceText(elapsed), text);
            EXPECT_EQ(panelFacts::sinceStep(elapsed), step) << text;
        }
    }

    TEST(AgentLines, NameTheFolderElseTheAgent)
    {
        using enum AgentActivity;
        const auto claude = AgentKind::claudeCode, codex = AgentKind::codex;
        struct Row {
            AgentSession session;
            panelFacts::AgentLine line;
        };
        for (const auto& [session, line] : std::vector<Row>{
                 {{"1", claude, "/u/docs", working},
                     {"CC", "docs", "Claude Code · 24m", AgentStatus::working, "Working"}},
                 {{"2", codex, "/u/p", idle, {}, {}, true},
                     {"CX", "p", "Codex · 24m", AgentStatus::finished, "Finished"}},
                 {{"3", codex, {}, idle}, {"CX", "Codex", "24m", AgentStatus::idle, "Idle"}},
                 {{"4", claude, "/u/a b", waitingForApproval, {}, {}, true},
                     {"CC", "a b", "Claude Code · 24m", AgentStatus::waitingForApproval, "Waiting for approval"}},
             })
            EXPECT_EQ(panelFacts::agentLine(session, Instant{} + 24min), line) << session.id;
    }

} // namespace

TEST_F(AgentFacts, SayWhatFollowsOnlyWhileTheAgentsEndTheSession)
{
    launch();
    connectClaude();
    const auto follow = [this](AgentEndAction action) {
        setSettings([&](auto& settings) { settings.agents.endAction = action; });
        return panelFacts::endAction(model());
    };
    prefer(SessionMode::agent);
    EXPECT_FALSE(follow(AgentEndAction::sleepNow)) << "no session runs";
    EXPECT_FALSE(panelFacts::showsAgents(model()));
    model().start();
    agent(AgentSignal::working);
    EXPECT_TRUE(panelFacts::showsAgents(model()));
    EXPECT_FALSE(follow(AgentEndAction::letSleep));
    EXPECT_EQ(follow(AgentEndAction::sleepNow), (panelFacts::EndAction{"Sleep", "", false}));
    EXPECT_THAT(follow(AgentEndAction::shutDown)->detail, testing::HasSubstr("go to sleep instead"));
    model().setSkipsForcedActionThisSession(true);
    EXPECT_TRUE(follow(AgentEndAction::shutDown)->isSkipped);
    ASSERT_TRUE(model().commands().begin({}, [] { }));
    EXPECT_EQ(follow(AgentEndAction::sleepNow)->detail, "Not while a command is running.");
    model().agentCondition()->keepAwake();
    EXPECT_FALSE(follow(AgentEndAction::sleepNow)) << "the agents end nothing any more";
    model().toggleSession();
    prefer(SessionMode::timer);
    EXPECT_FALSE(panelFacts::showsAgents(model())) << "they have no say in the next session";
}

} // namespace vespra
