#pragma once

#include "App/System/AppearanceMonitoring.h"
#include "App/System/simulated/SimulatedHelperMode.h"
#include "App/System/UserNotificationCenter.h"
#include "Core/Energy/PowerSnapshot.h"
#include "Core/Energy/ThermalLevel.h"

#include <expected>
#include <string>
#include <utility>
#include <vector>

namespace vespra {

/// What can be set on a simulated laptop.
struct MachineState {
    /// Percent, 0 to 100; absent: a machine without battery, which always runs on the charger.
    std::optional<std::int64_t> battery = 80;
    bool hasCharger = true;
    bool isLidClosed = false;
    bool hasExternalDisplay = false;
    bool isScreenOn = true;
    ThermalLevel thermal = ThermalLevel::nominal;
    SimulatedHelperMode helper = SimulatedHelperMode::notInstalled;
    Appearance appearance;

    PowerSnapshot power() const { return {.isOnACPower = hasCharger || !battery, .batteryLevel = battery}; }
    bool isClosedWithoutExternalDisplay() const { return isLidClosed && !hasExternalDisplay; }

    bool operator==(const MachineState&) const = default;
};

/// Keys with their values: {"battery", "57"}.
using MachineSettings = std::vector<std::pair<std::string, std::string>>;

/// A new state, and what is to happen once.
struct MachineChange {
    MachineState state;
    /// The machine is to sleep and wake up again, once the state is in force.
    bool sleepsNow = false;
    /// A version of the application that has come out.
    std::optional<std::string> update;
    /// The user presses and releases the keys of the global shortcuts.
    bool pressesShortcut = false;
    /// What the user does with a notification, last of all.
    std::optional<NotificationResponse> response;
};

/// What `settings` make of `state`; the last of equal keys counts. Fails with a sentence that names the key and says
/// what it takes.
std::expected<MachineChange, std::string> changed(const MachineState& state, const MachineSettings& settings);

/// Every part of `state` as `changed` takes it.
MachineSettings machineSettings(const MachineState& state);

/// Splits "battery=57". Fails with a sentence.
std::expected<MachineSettings::value_type, std::string> machineSetting(const std::string& text);

/// "battery=0..100|none charger=on|off ...": for messages and help.
std::string machineSettingsHelp();

} // namespace vespra
