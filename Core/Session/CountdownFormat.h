#pragma once

#include "Core/Scheduling/Instant.h"

#include <string>

/// Time left and time run as digits: "4:05", "1:00:00". The two round differently on purpose: a countdown never shows
/// 0:00 while time is left, a stopwatch never runs ahead.
namespace vespra::CountdownFormat {

/// Rounded up to a whole second; negative counts as 0.
std::string remaining(Seconds length);
/// Rounded down to a whole second; negative counts as 0.
std::string elapsed(Seconds length);
/// Minutes and seconds, from one hour on with hours, which go on past 24.
std::string clock(std::int64_t seconds);

} // namespace vespra::CountdownFormat
