#pragma once

#include "Control/Doctor/DoctorReport.h"

namespace vespra::doctor {

/// What is known of the lid and of what reacts to it; absent: unknown.
struct LidRules {
    std::optional<bool> isThere;
    /// As logind sees them; without `isDocked` logind does not answer at all.
    std::optional<bool> isDocked;
    std::optional<bool> isOnExternalPower;
    /// logind's settings: "suspend", "ignore" and so on. Without one of its own for external power it is `action`.
    std::string action = "suspend";
    std::optional<std::string> actionOnExternalPower;
    std::string actionDocked = "ignore";
    /// LidSwitchIgnoreInhibited: only locks of the lid itself stop logind, not those of sleep.
    bool ignoresSleepLocks = true;
    /// The program that manages power for the desktop, and acts on the lid by its own settings.
    std::optional<std::string> desktop;
    bool hasHelper = false;
};

/// What closing the lid does, in one line. `held` are all locks there are, those of `application` among them.
std::string lidThreat(const LidRules& rules, const std::vector<Inhibitor>& held, const std::string& application);

} // namespace vespra::doctor
