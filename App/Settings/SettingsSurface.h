#pragma once

#include "App/DesignSystem/Theme.h"
#include "App/Model/AppModel.h"

namespace vespra {

/// What the rows of the settings window are made with; all of it outlives them.
struct SettingsSurface {
    AppModel& model;
    const Theme theme;
};

} // namespace vespra
