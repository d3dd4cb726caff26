#pragma once

#include "App/MenuBar/StatusItem.h"

namespace vespra {

class AppModel;

/// What an item with these features shows of the model, in the user's words. What it cannot show is not read, so that
/// nothing wakes up for it. Followed by an observation loop that calls it. Main thread only.
StatusItemContent statusItemContent(const AppModel& model, const StatusItem::Features& features);

} // namespace vespra
