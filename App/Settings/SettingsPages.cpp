#include "App/Settings/SettingsPages.h"

#include "App/Settings/SettingFacts.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "Core/ClosedLid/ClosedLidPolicy.h"
#include "HelperProtocol/Brand.h"

#include <cassert>

namespace vespra {

namespace {

    const Setting* setting(std::string_view key)
    {
        const auto* const found = findSetting(key);
        assert(found);
        return found;
    }

    Page generalPage()
    {
        return {
            {.title = "Startup", .rows = {SpecialRow::openAtLogin, SpecialRow::loginApproval}},
            {.title = "Keyboard Shortcut", .rows = {SpecialRow::shortcut}},
            {.title = "Display",
                .rows = {SwitchRow{setting("showsRemainingTimeInMenuBar")},
                    // A running session follows.
                    SwitchRow{setting("preferences.options.keepsDisplayAwake"), &AppModel::setKeepsDisplayAwake},
                    SwitchRow{setting("playsHeatAlarm")}}},
        };
    }

    Page powerPage()
    {
        const auto* const lowBattery = setting("energy.stopsOnLowBattery");
        const auto* const timeLimit = setting("energy.batteryTimeLimit");
        return {
            {.title = "Charger", .rows = {SwitchRow{setting("energy.requiresACPower")}}},
            {.title = "Battery",
                .rows = {SwitchRow{lowBattery},
                    StepperRow{setting("energy.lowBatteryThreshold"), "Threshold", lowBattery},
                    SwitchRow{timeLimit},
                    StepperRow{timeLimit, "At most", timeLimit}}},
        };
    }

    Page closedLidPage()
    {
        const auto limit = Format::current().briefDuration(ClosedLidPolicy::maximumContinuousDuration);
        return {
            {.title = "Component",
                .explanation = localized(
                    "A small system component keeps the Mac awake with the lid closed. macOS asks you to approve it "
                    "once. It puts your sleep setting back on its own if %1 stops, and when the Mac restarts.",
                    {Brand::appName()}),
                .rows = {SpecialRow::component, SpecialRow::checklist}},
            {.title = "On Battery", .rows = {SwitchRow{setting("closedLid.continuesOnBattery")}}},
            {.title = "Safeguards",
                .rows = {FixedRow{"Continuous limit", limit},
                    FixedRow{"Stops if the Mac runs hot", localized("Always")},
                    FixedRow{"Display off with the lid closed", localized("Always")}}},
        };
    }

    Page agentPage()
    {
        return {
            {.title = "Agents",
                .explanation = localized("%1 adds small hooks to the agent's settings, after making a backup. Nothing "
                                         "else is changed, and Disconnect removes exactly what was added. Codex asks "
                                         "you to approve new hooks once with /hooks.",
                    {Brand::appName()}),
                .rows = {AgentRow{AgentKind::claudeCode}, AgentRow{AgentKind::codex}}},
            {.title = "When agents are done",
                .rows = {ChoiceRow{setting("agents.endAction"), "End action"}, SpecialRow::shutDownWarning}},
            {.title = "Timing",
                .rows = {StepperRow{setting("agents.graceDelay"), "Delay before ending"},
                    SwitchRow{setting("agents.waitingCountsAsFinished")},
                    StepperRow{setting("agentSafetyCap"), "Safety limit"}},
                .note =
                    [](AppModel&) {
                        return localized("If an agent starts working again during the delay, the session goes on. The "
                                         "safety limit ends the session even if an agent never reports back.");
                    }},
        };
    }

    Page aboutPage(bool updatesItself)
    {
        const auto updates = updatesItself
            ? PageSection{.title = "Updates",
                  .rows = {SpecialRow::checksForUpdates, SpecialRow::installsUpdates, SpecialRow::checkNow},
                  .note = settingFacts::updateNote}
            : PageSection{.title = "Updates", .rows = {SpecialRow::updatesByPackages}};
        return {
            {.rows = {SpecialRow::brand}, .hasCard = false},
            updates,
            {.rows = {SpecialRow::acknowledgements}, .hasCard = false},
        };
    }

} // namespace

Page settingsPage(SettingsTab tab, bool updatesItself)
{
    switch (tab) {
    case SettingsTab::general:
        return generalPage();
    case SettingsTab::power:
        return powerPage();
    case SettingsTab::closedLid:
        return closedLidPage();
    case SettingsTab::agent:
        return agentPage();
    case SettingsTab::about:
        break;
    }
    return aboutPage(updatesItself);
}

std::string title(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return localized("General");
    case SettingsTab::power:
        return localized("Power");
    case SettingsTab::closedLid:
        return localized("Closed lid");
    case SettingsTab::agent:
        return localized("Agent");
    case SettingsTab::about:
        break;
    }
    return localized("About");
}

std::string_view icon(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return "gearshape";
    case SettingsTab::power:
        return "bolt";
    case SettingsTab::closedLid:
        return "laptopcomputer";
    case SettingsTab::agent:
        return "terminal";
    case SettingsTab::about:
        break;
    }
    return "info.circle";
}

} // namespace vespra
