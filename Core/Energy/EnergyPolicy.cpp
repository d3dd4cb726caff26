#include "Core/Energy/EnergyPolicy.h"

#include <cmath>

namespace vespra {

std::int64_t EnergyPolicy::normalizedThreshold(std::int64_t percent)
{
    // The range lies on whole steps, so clamping first changes no result and keeps the arithmetic small.
    const auto steps = std::round(static_cast<double>(thresholdRange.clamped(percent)) / thresholdStep);
    return static_cast<std::int64_t>(steps) * thresholdStep;
}

} // namespace vespra
