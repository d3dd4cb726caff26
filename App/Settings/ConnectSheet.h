#pragma once

#include "App/DesignSystem/SheetWindow.h"
#include "App/Settings/SettingsSurface.h"

namespace vespra {

/// Shows what will be added to the agent's settings, and adds it when the user agrees. The sheet deletes itself.
SheetWindow& openConnectSheet(const SettingsSurface& surface, AgentKind agent, QWidget& window);

} // namespace vespra
