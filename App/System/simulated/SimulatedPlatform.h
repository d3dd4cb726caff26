#pragma once

#include "App/System/Platform.h"
#include "App/System/simulated/SimulatedMachine.h"

namespace vespra {

/// A laptop in memory, which its `machine` steers. A QCoreApplication must exist unless `time` brings its own loop.
Platform makeSimulatedPlatform(PlatformTime time);
/// The same on the system's own time.
Platform makeSimulatedPlatform();

} // namespace vespra
