#pragma once

#include "App/System/Platform.h"

namespace vespra {

/// The privileged component as a daemon that ServiceManagement registers.
PlatformHelper makeMacHelper(MainLoop& mainLoop);

/// Its Mach service; replies and the invalidation come on the main thread.
std::unique_ptr<HelperConnection> makeXPCHelperConnection(MainLoop& mainLoop);

} // namespace vespra
