#include "Core/Session/Guardrails.h"

namespace vespra {

bool needsCharger(bool engaged, const SessionSettings& settings)
{
    return engaged ? !settings.closedLid.continuesOnBattery : settings.energy.requiresACPower;
}

std::optional<Violation> powerViolation(bool engaged, const PowerSnapshot& power, const SessionSettings& settings)
{
    if (power.isOnACPower)
        return {};
    if (needsCharger(engaged, settings))
        return blocker::ChargerRequired{};
    const auto level = power.batteryLevel;
    if (settings.energy.stopsOnLowBattery && level && *level <= settings.energy.effectiveLowBatteryThreshold())
        return blocker::BatteryTooLow{*level};
    return {};
}

std::optional<Violation> violation(bool engaged, const SessionConditions& conditions, const SessionSettings& settings)
{
    if (engaged && isHot(conditions.thermal))
        return blocker::TooHot{};
    return powerViolation(engaged, conditions.power, settings);
}

} // namespace vespra
