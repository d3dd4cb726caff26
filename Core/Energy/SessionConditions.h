#pragma once

// Core/Energy: readings of power, heat and the privileged component, and what they mean.

#include "Core/Energy/HelperStatus.h"
#include "Core/Energy/PowerSnapshot.h"
#include "Core/Energy/ThermalLevel.h"

namespace vespra {

/// Everything a session needs to know about the outside world.
struct SessionConditions {
    PowerSnapshot power;
    ThermalLevel thermal = ThermalLevel::nominal;
    HelperStatus helper = helper::NotInstalled{};
    /// The system's disable-sleep setting is on: closed-lid mode is in force.
    bool lidSleepDisabled = false;
    /// The lid is shut and no external display is attached.
    bool lidClosedWithoutExternalDisplay = false;

    bool operator==(const SessionConditions&) const = default;
};

} // namespace vespra
