#include "App/Model/ClosedLidFacts.h"

#include "App/System/ClosedLidController.h"
#include "Tests/Support/LaunchedApplication.h"

namespace vespra {

namespace {

    using ClosedLidFacts = LaunchedApplication;

    std::string shortly(const panelFacts::ClosedLidRow& row)
    {
        constexpr std::array signs{'+', '.', '-'}; // ok, pending, failed
        auto text = std::string{row.canSwitch ? "switch" : "no switch"};
        if (row.action)
            text = title(*row.action);
        text += "|" + row.status;
        for (const auto& check : row.checks)
            text += std::string{"|"} + signs.at(static_cast<std::size_t>(check.state)) + check.text;
        return text;
    }

} // namespace

TEST_F(ClosedLidFacts, OpenWhileSomethingIsMissing)
{
    launch();
    struct Row {
        const char* helper;
        bool isWanted, runs, isOnCharger;
        const char* shown;
    };
    for (const auto& row : std::vector<Row>{
             {"noBuiltInDisplay", false, false, true, "no switch|Requires a laptop with a lid"},
             {"noBuiltInDisplay", true, false, true, "switch|Requires a laptop with a lid"},
             {"notInstalled", false, false, true, "switch|Not set up"},
             {"notInstalled",
                 true,
                 true,
                 true,
                 "Set Up…|Not set up|-Component not set up|+Power|+Temperature|.Waits for the component"},
             {"awaitingApproval",
                 true,
                 false,
                 false,
                 "Ask for Approval|Waiting for your approval|.Component needs your approval|-Plug in the "
                 "charger|+Temperature|.Starts with the session"},
             {"awaitingApproval",
                 false,
                 false,
                 true,
                 "Ask for Approval|Waiting for your approval|.Component needs your "
                 "approval|+Power|+Temperature|.Closed-lid mode is off"},
             {"failed", false, false, true, "switch|Component not responding"},
             {"failed",
                 true,
                 false,
                 true,
                 "Try Again|Component not responding|-Component not "
                 "responding|+Power|+Temperature|.Starts with the session"},
             {"ready", false, true, true, "switch|Stay awake with the lid closed"},
             {"ready", true, false, false, "switch|Plug in the charger"},
             {"ready", true, false, true, "switch|Ready at start"},
             {"ready", true, true, true, "switch|You can close the lid"},
         }) {
        SCOPED_TRACE(testing::Message() << row.helper << " " << row.isWanted << " " << row.runs);
        laptop.set({{"helper", row.helper}, {"charger", row.isOnCharger ? "on" : "off"}});
        model().closedLid()->refreshStatus();
        laptop.settle();
        prefer(SessionMode::timer, {.closedLid = row.isWanted});
        if (row.runs)
            model().start();
        laptop.settle();
        EXPECT_EQ(shortly(panelFacts::closedLidRow(model())), row.shown);
        coordinator().stop(end::StoppedByUser{});
        laptop.settle();
    }
}

TEST_F(ClosedLidFacts, CheckUntilTheComponentHasAnswered)
{
    launch();
    laptop.set({{"helper", "ready"}});
    model().closedLid()->refreshStatus();
    laptop.settle();
    laptop.set({{"helper", "stuck"}});
    prefer(SessionMode::timer, {.closedLid = true});
    model().start();
    laptop.settle();
    EXPECT_EQ(shortly(panelFacts::closedLidRow(model())),
        "switch|Checking…|+Component installed|+Power|+Temperature|.Sleep is being switched off");
}

} // namespace vespra
