#include "App/Onboarding/OnboardingWindow.h"
#include "App/Render/Scenes.h"
#include "App/Settings/ConnectSheet.h"
#include "App/Settings/SettingsWindow.h"

#include <QDialog>

#include <array>

namespace vespra {

namespace {

    void leaveAsItIs(Stage&) { }

    template <SimulatedHelperMode mode> void setComponent(Stage& stage)
    {
        stage.change([](MachineState& machine) { machine.helper = mode; });
    }

    void limitBattery(Stage& stage)
    {
        stage.set([](SessionSettings& settings) {
            settings.energy.requiresACPower = false;
            settings.energy.batteryTimeLimit = 1h;
        });
    }

    void useClosedLid(Stage& stage)
    {
        setComponent<SimulatedHelperMode::ready>(stage);
        stage.prefer([](SessionPreferences& preferences) { preferences.options.closedLid = true; });
        stage.start();
    }

    template <AgentEndAction action> void connectOne(Stage& stage)
    {
        stage.connect(AgentKind::claudeCode);
        stage.install(AgentKind::codex);
        stage.set([](SessionSettings& settings) { settings.agents.endAction = action; });
    }

    void shutDownForNothing(Stage& stage)
    {
        connectOne<AgentEndAction::shutDown>(stage);
        stage.set([](SessionSettings& settings) { settings.agentSafetyCap = {}; });
    }

    void showTimeLeft(Stage& stage) { stage.model().setShowsRemainingTimeInMenuBar(true); }

    template <SettingsTab tab> std::unique_ptr<QWidget> settings(Stage& stage)
    {
        stage.model().setSettingsTab(tab);
        return std::make_unique<SettingsWindow>(stage.context(), stage.theme());
    }

    std::unique_ptr<QWidget> connectSheet(Stage& stage)
    {
        QWidget window;
        auto& sheet = openConnectSheet({stage.model(), stage.theme()}, AgentKind::codex, window);
        sheet.setParent(nullptr);
        return std::unique_ptr<QWidget>{&sheet};
    }

    template <OnboardingStep step> std::unique_ptr<QWidget> onboarding(Stage& stage)
    {
        auto window = std::make_unique<OnboardingWindow>(stage.context(), stage.theme());
        window->go(step);
        return window;
    }

    using enum SettingsTab;
    using enum SimulatedHelperMode;

    constexpr StageSetup largeText{.textScale = 1.5}, rightToLeft{.isRightToLeft = true};

    constexpr std::array<Scene, 20> scenesOfSettings{{
        {"settings-general", showTimeLeft, settings<general>},
        {"settings-general-150", showTimeLeft, settings<general>, largeText},
        {"settings-power", limitBattery, settings<power>},
        {"settings-power-rtl", limitBattery, settings<power>, rightToLeft},
        {"settings-closed-lid", setComponent<ready>, settings<closedLid>},
        {"settings-closed-lid-not-installed", setComponent<notInstalled>, settings<closedLid>},
        {"settings-closed-lid-approval", setComponent<awaitingApproval>, settings<closedLid>},
        {"settings-closed-lid-failed", setComponent<failed>, settings<closedLid>},
        {"settings-closed-lid-in-use", useClosedLid, settings<closedLid>},
        {"settings-closed-lid-no-lid", setComponent<noBuiltInDisplay>, settings<closedLid>},
        {"settings-agent", connectOne<AgentEndAction::sleepNow>, settings<agent>},
        {"settings-agent-shut-down", shutDownForNothing, settings<agent>},
        {"settings-about", leaveAsItIs, settings<about>},
        {"settings-connect", leaveAsItIs, connectSheet},
        {"onboarding-1", leaveAsItIs, onboarding<OnboardingStep::launchAtLogin>},
        {"onboarding-2", setComponent<ready>, onboarding<OnboardingStep::closedLid>},
        {"onboarding-2-not-installed", setComponent<notInstalled>, onboarding<OnboardingStep::closedLid>},
        {"onboarding-2-approval", setComponent<awaitingApproval>, onboarding<OnboardingStep::closedLid>},
        {"onboarding-2-no-lid", setComponent<noBuiltInDisplay>, onboarding<OnboardingStep::closedLid>},
        {"onboarding-2-150", setComponent<notInstalled>, onboarding<OnboardingStep::closedLid>, largeText},
    }};

} // namespace

std::span<const Scene> settingsScenes() { return scenesOfSettings; }

} // namespace vespra
