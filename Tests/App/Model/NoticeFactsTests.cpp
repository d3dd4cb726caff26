#include "App/Model/NoticeFacts.h"

#include "App/System/ClosedLidController.h"
#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    class NoticeFacts : public LaunchedApplication {
    protected:
        NoticeFacts()
        {
            qputenv("LC_ALL", "C"); // before the user's format is made
            launch();
            setSettings([](auto& settings) { settings.energy.requiresACPower = false; });
        }
        void startAgentSession()
        {
            connectClaude();
            prefer(SessionMode::agent);
            model().start();
        }
        void setHelper(const char* mode)
        {
            laptop.set({{"helper", mode}});
            model().closedLid()->refreshStatus();
            laptop.settle();
        }
        std::string phaseTitle()
        {
            const auto notice = panelFacts::agentPhaseNotice(model());
            return notice ? notice->title : "";
        }
    };

} // namespace

TEST_F(NoticeFacts, FollowTheAgentsThroughASession)
{
    setSettings([](auto& settings) { settings.agentSafetyCap = 2h; });
    startAgentSession();
    EXPECT_EQ(phaseTitle(), "Waiting for agents");
    agent(AgentSignal::working);
    EXPECT_EQ(phaseTitle(), "");
    EXPECT_FALSE(panelFacts::finishingEnd(model()));
    agent(AgentSignal::waitingForApproval);
    const auto end = panelFacts::finishingEnd(model());
    ASSERT_TRUE(end);
    EXPECT_EQ(panelFacts::finishingNotice(model(), *end, laptop.time.now()).title, "No agent is working");
    agent(AgentSignal::finished);
    const auto notice = panelFacts::finishingNotice(model(), *end, laptop.time.now() + 12s);
    EXPECT_EQ(notice.title, "Agents finished");
    EXPECT_EQ(notice.text, "Ends in 1:48 unless an agent starts again.");
    EXPECT_EQ(notice.spoken, "Agents finished. Ends in 2 minutes unless an agent starts again.");
    model().agentCondition()->keepAwake();
    EXPECT_FALSE(panelFacts::finishingEnd(model()));
    EXPECT_THAT(panelFacts::agentPhaseNotice(model())->text, testing::EndsWith("It ends at 02:00 at the latest."));
}

TEST_F(NoticeFacts, AnnounceTheActionThatWillBeTakenInTruth)
{
    const auto now = laptop.time.now();
    struct Row {
        const char* helper;
        AgentEndAction action;
        const char *title, *text, *spoken;
    };
    for (const auto& row : std::vector<Row>{
             {"ready",
                 AgentEndAction::sleepNow,
                 "The computer will sleep in 0:42",
                 "Your agents are done",
                 "The computer will sleep in 1 minute. Your agents are done"},
             {"ready",
                 AgentEndAction::shutDown,
                 "The computer will shut down in 0:42",
                 "Your agents are done. Save your work.",
                 "The computer will shut down in 1 minute. Save your work. Your agents are done"},
             {"failed",
                 AgentEndAction::shutDown,
                 "The computer will sleep in 0:42",
                 "Your agents are done",
                 "The computer will sleep in 1 minute. Your agents are done"},
         }) {
        setHelper(row.helper);
        const auto notice = panelFacts::forcedActionNotice(model(), {row.action, now + 60s}, now + 18s);
        EXPECT_EQ(notice.title, row.title);
        EXPECT_EQ(notice.text, row.text);
        EXPECT_EQ(notice.spoken, row.spoken);
    }
}

TEST_F(NoticeFacts, TellARefusalForAsLongAsItHolds)
{
    setHelper("ready");
    model().start();
    for (const auto& [hindrance, relief, text] : std::vector<std::tuple<MachineSettings, MachineSettings, const char*>>{
             {{{"charger", "off"}}, {{"charger", "on"}}, "Plug in the charger to start."},
             {{{"thermal", "serious"}}, {{"thermal", "nominal"}}, "Computer is too hot for closed-lid mode."},
         }) {
        laptop.set(hindrance);
        EXPECT_FALSE(panelFacts::closedLidRefusalNotice(model())) << "nobody has asked";
        model().setClosedLid(true);
        ASSERT_TRUE(panelFacts::closedLidRefusalNotice(model()));
        EXPECT_EQ(panelFacts::closedLidRefusalNotice(model())->title, text);
        laptop.set(relief);
        EXPECT_FALSE(panelFacts::closedLidRefusalNotice(model()));
        model().setClosedLid(false);
    }
}

TEST_F(NoticeFacts, TellOfAnEndOfACommandAndOfHeat)
{
    EXPECT_FALSE(panelFacts::commandLine(model()) || panelFacts::heatNotice(model()) || panelFacts::endNotice(model()));
    ASSERT_TRUE(model().commands().begin({}, [] { }));
    EXPECT_TRUE(panelFacts::commandLine(model()));
    laptop.set({{"thermal", "serious"}});
    EXPECT_EQ(panelFacts::heatNotice(model())->title, "The computer is running hot");
    laptop.set({{"battery", "19"}, {"charger", "off"}});
    const auto end = panelFacts::endNotice(model());
    ASSERT_TRUE(end);
    EXPECT_EQ(end->title, "Battery at 19%");
    EXPECT_EQ(end->text, "Session ended at 00:00. Your computer can go to sleep again.");
    EXPECT_FALSE(panelFacts::commandLine(model()) || panelFacts::heatNotice(model()));
}

} // namespace vespra
