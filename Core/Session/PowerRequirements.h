#pragma once

namespace vespra {

/// What a session asks of the machine's power management.
struct PowerRequirements {
    bool preventsIdleSystemSleep = false;
    bool preventsDisplaySleep = false;
    /// Stay awake with the lid closed; carried out by the privileged component.
    bool disablesSystemSleep = false;
    bool turnsDisplayOff = false;

    static constexpr PowerRequirements none() { return {}; }
    bool operator==(const PowerRequirements&) const = default;
};

} // namespace vespra
