#pragma once

#include "ControlProtocol/SettingTexts.h"

namespace vespra {

class AppModel;

/// The value of every setting, as it counts now. Followed by an observation loop that asks. Main thread only.
UserSettings settingsOf(const AppModel& model);

/// Changes one setting as `change` does, which counts at once and is kept. The same for a value of any kind: `change`
/// is carried out on the settings in force and on those that are kept. Main thread only.
void changeSetting(AppModel& model, const Setting& setting, const std::function<void(UserSettings&)>& change);

/// Changes one setting, which counts at once and is kept. `preferences` are for the next session; the one that runs
/// has options of its own. Main thread only.
void changeSetting(AppModel& model, const settingTexts::Change& change);

} // namespace vespra
