#pragma once

#include "Core/Scheduling/Instant.h"

namespace vespra {

/// The user's choice for sessions with a closed lid, and the limit that always holds.
struct ClosedLidPolicy {
    /// How long closed-lid mode may be in force without a break.
    static constexpr Seconds maximumContinuousDuration = 4h;

    /// A closed-lid session may go on when the charger is removed.
    bool continuesOnBattery = false;

    bool operator==(const ClosedLidPolicy&) const = default;
};

} // namespace vespra
