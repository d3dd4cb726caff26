#include "App/System/linux/UPowerReading.h"

#include <algorithm>
#include <cmath>

namespace vespra {

PowerSnapshot powerSnapshot(const UPowerReading& reading)
{
    constexpr std::uint32_t battery = 2, ups = 3;
    const bool isPresent = reading.isPresent.value_or(false);
    if (!isPresent || (reading.deviceType != battery && reading.deviceType != ups))
        return PowerSnapshot::desktop();
    PowerSnapshot snapshot{.isOnACPower = !reading.onBattery.value_or(false)};
    if (reading.deviceType == battery && reading.percentage && std::isfinite(*reading.percentage))
        snapshot.batteryLevel = static_cast<std::int64_t>(std::clamp(std::round(*reading.percentage), 0.0, 100.0));
    return snapshot;
}

} // namespace vespra
