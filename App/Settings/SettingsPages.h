#pragma once

// App/Settings: the settings window: its pages as data, the rows that they are made of, and the window.

#include "App/Model/AppModel.h"
#include "App/Model/SettingsTab.h"
#include "ControlProtocol/SettingsCatalogue.h"

#include <variant>
#include <vector>

namespace vespra {

/// On or off: a flag, or the switch of a length that may be off. Its texts are the catalogue's.
struct SwitchRow {
    const Setting* setting;
    /// Changes it where that does more than to keep the value; null otherwise.
    void (AppModel::*change)(bool) = nullptr;
};

/// A percentage or a length, between buttons that step it.
struct StepperRow {
    const Setting* setting;
    std::string_view label;
    /// The switch without which it is not shown; null: it always is.
    const Setting* whileOn = nullptr;
};

/// One of several values, in a menu.
struct ChoiceRow {
    const Setting* setting;
    std::string_view label;
};

/// What always holds.
struct FixedRow {
    std::string_view label;
    std::string value;
};

/// An agent, how it is connected, and its button.
struct AgentRow {
    AgentKind kind;
};

/// Rows that are made for one thing.
enum class SpecialRow {
    brand, // mark, name and version
    openAtLogin,
    loginApproval, // only while the system asks for it
    shortcut,
    component, // its status, and what can be done about it
    checklist, // the conditions of closed-lid mode
    shutDownWarning, // only while shutting down is chosen and cannot be done
    checksForUpdates,
    installsUpdates,
    checkNow,
    updatesByPackages, // where the application does not update itself
    acknowledgements,
};

using PageRow = std::variant<SwitchRow, StepperRow, ChoiceRow, FixedRow, AgentRow, SpecialRow>;

/// Rows that belong together, on one card.
struct PageSection {
    /// The English text; empty: no title.
    std::string_view title = {};
    /// Between title and rows; may be empty.
    std::string explanation = {};
    std::vector<PageRow> rows = {};
    /// Below the rows, from what the model says now; null: none.
    std::string (*note)(AppModel& model) = nullptr;
    bool hasCard = true;
};

using Page = std::vector<PageSection>;

/// `updatesItself`: the application has an updater.
Page settingsPage(SettingsTab tab, bool updatesItself);

/// What the page is called, in the user's language, and its icon.
std::string title(SettingsTab tab);
std::string_view icon(SettingsTab tab);

} // namespace vespra
