#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vespra {

/// One reading of the power source.
struct PowerSnapshot {
    bool isOnACPower = true;
    /// Percent, 0 to 100; absent on a machine without an internal battery.
    std::optional<std::int64_t> batteryLevel;

    /// A machine without battery.
    static constexpr PowerSnapshot desktop() { return {}; }

    bool isOnBattery() const { return !isOnACPower; }
    bool operator==(const PowerSnapshot&) const = default;
};

/// A value in the system's description of one power source; other kinds of value are `std::monostate`.
using PowerSourceValue = std::variant<std::monostate, std::int64_t, std::string>;
using PowerSourceDescription = std::map<std::string, PowerSourceValue>;

/// Reads a list of power sources as macOS gives it. `providingSourceType` is "AC Power" on the charger; absent counts
/// as on the charger. The first source whose "Type" is "InternalBattery" is the battery; its level is absent unless
/// "Current Capacity" and "Max Capacity" are integers and the maximum is at least 1.
PowerSnapshot powerSnapshot(
    const std::optional<std::string>& providingSourceType, const std::vector<PowerSourceDescription>& sources);

} // namespace vespra
