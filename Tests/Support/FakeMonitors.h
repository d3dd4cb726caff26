#pragma once

#include "Core/Energy/ScriptedMonitors.h"

namespace vespra {

using FakePowerSource = ScriptedPowerSource;
using FakeThermal = ScriptedThermal;

inline PowerSnapshot charger(std::optional<std::int64_t> level = {})
{
    return {.isOnACPower = true, .batteryLevel = level};
}
inline PowerSnapshot battery(std::optional<std::int64_t> level)
{
    return {.isOnACPower = false, .batteryLevel = level};
}

} // namespace vespra
