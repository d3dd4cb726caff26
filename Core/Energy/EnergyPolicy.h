#pragma once

#include "Core/ClosedRange.h"
#include "Core/Scheduling/Instant.h"

#include <cstdint>
#include <optional>

namespace vespra {

/// Battery and charger guardrails.
struct EnergyPolicy {
    /// Percent that the low-battery threshold can take.
    static constexpr ClosedRange<std::int64_t> thresholdRange{10, 80};
    static constexpr std::int64_t thresholdStep = 5;

    /// A session that is not in closed-lid mode needs the charger.
    bool requiresACPower = true;
    /// End, or refuse, at the low-battery threshold.
    bool stopsOnLowBattery = true;
    /// Percent as the user set it; every use goes through `effectiveLowBatteryThreshold`.
    std::int64_t lowBatteryThreshold = 20;
    /// How long a session may run on battery; absent: no limit.
    std::optional<Seconds> batteryTimeLimit;

    /// The nearest multiple of 5 percent within 10 to 80.
    static std::int64_t normalizedThreshold(std::int64_t percent);
    std::int64_t effectiveLowBatteryThreshold() const { return normalizedThreshold(lowBatteryThreshold); }

    bool operator==(const EnergyPolicy&) const = default;
};

} // namespace vespra
