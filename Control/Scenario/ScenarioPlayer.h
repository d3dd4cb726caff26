#pragma once

#include "Control/Scenario/Scenario.h"

#include <functional>
#include <string_view>

namespace vespra {

/// Plays `scenario` through a coordinator, a tracker and end conditions of its own on a virtual clock. `print` gets
/// each line of what happens, as JSON without line feed, in order. Main thread only.
void play(const Scenario& scenario, const std::function<void(std::string_view line)>& print);

} // namespace vespra
