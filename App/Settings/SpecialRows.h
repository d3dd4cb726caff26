#pragma once

#include "App/Settings/SettingsPages.h"
#include "App/Settings/SettingsSurface.h"

namespace vespra {

/// A row that is made for one thing. It follows the model.
QWidget* makeSpecialRow(const SettingsSurface& surface, SpecialRow row);

QWidget* makeOpenAtLoginRow(const SettingsSurface& surface);
QWidget* makeLoginApprovalRow(const SettingsSurface& surface);
QWidget* makeShortcutRow(const SettingsSurface& surface);
QWidget* makeComponentRow(const SettingsSurface& surface);
QWidget* makeChecklistRow(const SettingsSurface& surface);
QWidget* makeAgentRow(const SettingsSurface& surface, AgentKind agent);
QWidget* makeShutDownWarning(const SettingsSurface& surface);
QWidget* makeBrandView(const SettingsSurface& surface);
QWidget* makeCheckNowRow(const SettingsSurface& surface);
QWidget* makeUpdatesByPackagesRow(const SettingsSurface& surface);
QWidget* makeAcknowledgementsButton(const SettingsSurface& surface);

/// One of the updater's own switches.
QWidget* makeUpdateSwitchRow(const SettingsSurface& surface, const std::string& label, bool (AppUpdates::*isOn)() const,
    void (AppUpdates::*setOn)(bool));

} // namespace vespra
