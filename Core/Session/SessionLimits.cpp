#include "Core/Session/SessionLimits.h"

#include <algorithm>
#include <cmath>

namespace vespra::SessionLimits {

Seconds clampedDuration(Seconds length)
{
    constexpr double minute = 60;
    return std::clamp(Seconds{std::round(length.count() / minute) * minute}, minimumDuration, maximumDuration);
}

} // namespace vespra::SessionLimits
