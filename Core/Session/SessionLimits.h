#pragma once

#include "Core/Scheduling/Instant.h"

namespace vespra::SessionLimits {

inline constexpr Seconds minimumDuration = 60s;
/// The longest timer and safety cap, and the furthest from now that an extension may move the end.
inline constexpr Seconds maximumDuration = 24h;
inline constexpr Seconds extensionStep = 15min;
/// The ending-soon warning comes this long before the planned end.
inline constexpr Seconds endingSoonLead = 5min;

/// The nearest whole minute within one minute to 24 hours.
Seconds clampedDuration(Seconds length);

} // namespace vespra::SessionLimits
