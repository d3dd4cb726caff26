#include "App/Render/Scenes.h"

#include "App/Panel/Content/PanelContent.h"
#include "App/Panel/PanelFrame.h"

#include <QApplication>
#include <QKeyEvent>

#include <array>

namespace vespra {

namespace {

    using enum AgentKind;
    using enum AgentSignal;

    /// On battery as well, as every session here that says where it stops.
    void roam(Stage& stage)
    {
        stage.set([](SessionSettings& settings) {
            settings.energy.requiresACPower = false;
            settings.closedLid.continuesOnBattery = true;
        });
    }

    void preferMode(Stage& stage, SessionMode mode, SessionOptions options = {})
    {
        stage.prefer([&](SessionPreferences& preferences) {
            preferences.mode = mode;
            preferences.options = options;
        });
    }

    void preferTimer(Stage& stage, Seconds duration, SessionOptions options = {})
    {
        preferMode(stage, SessionMode::timer, options);
        stage.prefer([&](SessionPreferences& preferences) { preferences.timerDuration = duration; });
    }

    void preferUntil(Stage& stage, TimeOfDay time, SessionOptions options = {})
    {
        preferMode(stage, SessionMode::until, options);
        stage.prefer([&](SessionPreferences& preferences) { preferences.untilTime = time; });
    }

    // The states, numbered as in the files' names.

    void idleTimer(Stage& stage) { preferTimer(stage, 90min); }

    void blockedWithoutCharger(Stage& stage)
    {
        preferUntil(stage, {18, 0}, {.keepsDisplayAwake = true, .closedLid = true});
        stage.waitUntil(16, 20);
        stage.change([](MachineState& machine) { machine.hasCharger = false; });
    }

    void endedByLowBattery(Stage& stage)
    {
        roam(stage);
        preferMode(stage, SessionMode::unlimited);
        stage.waitUntil(14, 10);
        stage.start();
        stage.waitUntil(16, 42);
        stage.change([](MachineState& machine) {
            machine.hasCharger = false;
            machine.battery = 19;
        });
        stage.change([](MachineState& machine) { machine.hasCharger = true; });
    }

    void noAgentConnected(Stage& stage) { preferMode(stage, SessionMode::agent); }

    void runningTimer(Stage& stage)
    {
        roam(stage);
        preferTimer(stage, 90min, {.keepsDisplayAwake = true});
        stage.waitUntil(16, 30);
        stage.start();
        stage.waitUntil(17, 11, 48);
    }

    void agentsAtWork(Stage& stage)
    {
        roam(stage);
        stage.connect(claudeCode);
        stage.connect(codex);
        stage.set([](SessionSettings& settings) { settings.agents.endAction = AgentEndAction::sleepNow; });
        preferMode(stage, SessionMode::agent, {.closedLid = true});
        stage.waitUntil(14, 31);
        stage.start();
        stage.waitUntil(15, 31);
        stage.report(claudeCode, "checkout-service", working);
        stage.waitUntil(15, 40);
        stage.report(claudeCode, "docs", working);
        stage.report(codex, "parser", working);
        stage.waitUntil(15, 47);
        stage.report(codex, "parser", finished);
        stage.waitUntil(15, 52);
        stage.report(claudeCode, "docs", waitingForApproval);
        stage.waitUntil(15, 55, 9);
    }

    /// One agent has worked from 14:31 until `hour`:`minute`:`second`.
    void finishAgents(Stage& stage, int hour, int minute, int second)
    {
        roam(stage);
        stage.connect(claudeCode);
        preferMode(stage, SessionMode::agent);
        stage.waitUntil(14, 31);
        stage.start();
        stage.report(claudeCode, "checkout-service", working);
        stage.waitUntil(hour, minute, second);
        stage.report(claudeCode, "checkout-service", finished);
    }

    void agentsFinished(Stage& stage)
    {
        finishAgents(stage, 16, 36, 29);
        stage.waitUntil(16, 36, 41);
    }

    void closedLidBeingChecked(Stage& stage)
    {
        roam(stage);
        preferUntil(stage, {20, 5});
        stage.waitUntil(17, 22, 30);
        stage.start();
        stage.waitUntil(17, 55);
        // The component is asked, and its answer takes a while.
        stage.change([](MachineState& machine) { machine.helper = SimulatedHelperMode::stuck; });
        stage.model().setClosedLid(true);
        stage.settle();
    }

    void closedLidAwaitsApproval(Stage& stage)
    {
        preferTimer(stage, 2h, {.closedLid = true});
        stage.change([](MachineState& machine) { machine.helper = SimulatedHelperMode::awaitingApproval; });
    }

    void sleepCountsDown(Stage& stage)
    {
        stage.set([](SessionSettings& settings) { settings.agents.endAction = AgentEndAction::sleepNow; });
        finishAgents(stage, 16, 30, 0);
        stage.waitUntil(16, 32, 18);
    }

    void runningHot(Stage& stage)
    {
        roam(stage);
        preferTimer(stage, 1h);
        stage.waitUntil(15, 0);
        stage.start();
        stage.change([](MachineState& machine) { machine.thermal = ThermalLevel::serious; });
        stage.waitUntil(15, 38, 30);
    }

    std::unique_ptr<QWidget> panel(Stage& stage)
    {
        const auto makeContent = [&stage] { return new PanelContent{stage.context(), stage.theme(), {}}; };
        auto frame = std::make_unique<PanelFrame>(stage.theme(), makeContent);
        const auto fit = [frame = frame.get()] {
            frame->contentSize(QWIDGETSIZE_MAX);
            frame->resize(frame->sizeHint());
        };
        fit();
        frame->onContentResize = fit;
        return frame;
    }

    /// Away from the button that has the focus, and back.
    void useKeyboard(QWidget& panel)
    {
        for (const auto key : {Qt::Key_Backtab, Qt::Key_Tab}) {
            QKeyEvent press{QEvent::KeyPress, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier};
            QApplication::sendEvent(panel.focusWidget(), &press);
        }
    }

    constexpr std::array<Scene, 11> scenesOfPanel{{
        {"panel-1", idleTimer, panel},
        {"panel-2", blockedWithoutCharger, panel},
        {"panel-3", endedByLowBattery, panel},
        {"panel-4", noAgentConnected, panel},
        {"panel-5", runningTimer, panel},
        {"panel-6", agentsAtWork, panel},
        {"panel-7", agentsFinished, panel},
        {"panel-8", closedLidBeingChecked, panel},
        {"panel-9", closedLidAwaitsApproval, panel, {}, useKeyboard},
        {"panel-10", sleepCountsDown, panel},
        {"panel-11", runningHot, panel},
    }};

} // namespace

std::span<const Scene> panelScenes() { return scenesOfPanel; }

} // namespace vespra
