#pragma once

#include "Helper/SleepSetting.h"

namespace vespra {

/// Has the bus and the service manager read their files again, and ends the installed helper if it runs: the next call
/// starts the one that is installed by then. Where there is no service manager the bus alone is asked. Waits until the
/// helper has ended, 10 s at most.
HelperResult restartServices();

} // namespace vespra
