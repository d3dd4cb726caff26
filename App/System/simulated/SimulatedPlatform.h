#pragma once

#include "App/System/Platform.h"
#include "App/System/simulated/SimulatedMachine.h"

namespace vespra {

/// A laptop in memory on the system's own time. Its `machine` steers it.
Platform makeSimulatedPlatform();

} // namespace vespra
