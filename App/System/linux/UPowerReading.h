#pragma once

#include "Core/Energy/PowerSnapshot.h"

#include <cstdint>
#include <optional>

namespace vespra {

/// What UPower says; absent is whatever it does not say, or says in another type than it should.
struct UPowerReading {
    std::optional<bool> onBattery;
    /// Of the device that joins all batteries: 2 is a battery, 3 a UPS, 0 none.
    std::optional<std::uint32_t> deviceType;
    std::optional<bool> isPresent;
    /// Percent.
    std::optional<double> percentage;
};

/// A machine without battery or UPS runs on its mains, whatever else is said.
PowerSnapshot powerSnapshot(const UPowerReading& reading);

} // namespace vespra
