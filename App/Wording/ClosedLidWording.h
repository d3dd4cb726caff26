#pragma once

#include "Core/ClosedLid/ClosedLidStatus.h"

#include <string>

namespace vespra {

/// What closed-lid mode would do now, as its status line.
std::string message(const ClosedLidStatus& status);

} // namespace vespra
