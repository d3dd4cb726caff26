#pragma once

#include "App/System/Platform.h"

#include <functional>
#include <string>

namespace vespra::simulatedScreen {

/// `print` gets each notification of a simulated laptop, which has no screen of its own, as a line. Does nothing on a
/// real one.
void follow(Platform& platform, std::function<void(const std::string&)> print);

} // namespace vespra::simulatedScreen
