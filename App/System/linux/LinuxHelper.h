#pragma once

#include "App/System/Platform.h"

namespace vespra {

/// The privileged component as a service of the system bus, logind and UPower.
PlatformHelper makeLinuxHelper();

} // namespace vespra
