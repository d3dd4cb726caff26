#pragma once

#include "Core/Scheduling/TaskScheduling.h"

#include <memory>

namespace vespra {

/// One-shot dispatch timers against the continuous clock, on the main queue.
std::unique_ptr<TaskScheduling> makeDispatchTaskScheduler();

} // namespace vespra
