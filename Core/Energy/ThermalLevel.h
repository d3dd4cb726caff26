#pragma once

#include "Core/RawValue.h"

namespace vespra {

/// How hot the machine runs, in rising order.
enum class ThermalLevel { nominal = 0, fair = 1, serious = 2, critical = 3 };

template <>
inline constexpr auto rawValues<ThermalLevel> = RawValueTable<ThermalLevel, 4>{{
    {ThermalLevel::nominal, "nominal"},
    {ThermalLevel::fair, "fair"},
    {ThermalLevel::serious, "serious"},
    {ThermalLevel::critical, "critical"},
}};

/// Reads the operating system's number for its thermal state; an unknown one counts as hot, on the safe side.
constexpr ThermalLevel thermalLevelFromSystem(long state)
{
    return state >= 0 && state <= 3 ? static_cast<ThermalLevel>(state) : ThermalLevel::serious;
}

/// From here on the machine is too hot for its lid to stay closed.
constexpr bool isHot(ThermalLevel level) { return level >= ThermalLevel::serious; }

} // namespace vespra
