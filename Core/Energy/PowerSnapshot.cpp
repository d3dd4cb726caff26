#include "Core/Energy/PowerSnapshot.h"

#include <algorithm>
#include <cmath>

namespace vespra {

namespace {

    template <class Value> const Value* valueOf(const PowerSourceDescription& source, const char* key)
    {
        const auto found = source.find(key);
        return found == source.end() ? nullptr : std::get_if<Value>(&found->second);
    }

    bool isInternalBattery(const PowerSourceDescription& source)
    {
        const auto* type = valueOf<std::string>(source, "Type");
        return type && *type == "InternalBattery";
    }

    std::optional<std::int64_t> batteryLevel(const PowerSourceDescription& battery)
    {
        const auto* current = valueOf<std::int64_t>(battery, "Current Capacity");
        const auto* maximum = valueOf<std::int64_t>(battery, "Max Capacity");
        if (!current || !maximum || *maximum < 1)
            return {};
        const double percent = static_cast<double>(*current) * 100 / static_cast<double>(*maximum);
        return static_cast<std::int64_t>(std::clamp(std::round(percent), 0.0, 100.0));
    }

} // namespace

PowerSnapshot powerSnapshot(
    const std::optional<std::string>& providingSourceType, const std::vector<PowerSourceDescription>& sources)
{
    PowerSnapshot snapshot{
        .isOnACPower = !providingSourceType || *providingSourceType == "AC Power", .batteryLevel = {}};
    const auto battery = std::ranges::find_if(sources, isInternalBattery);
    if (battery != sources.end())
        snapshot.batteryLevel = batteryLevel(*battery);
    return snapshot;
}

} // namespace vespra
