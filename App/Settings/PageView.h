#pragma once

#include "App/Settings/SettingsPages.h"
#include "App/Settings/SettingsSurface.h"

namespace vespra {

/// A page of the settings window, drawn from its data. Every control shows what the model says and changes it at once.
QWidget* makePageView(const SettingsSurface& surface, const Page& page);

} // namespace vespra
