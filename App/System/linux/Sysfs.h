#pragma once

#include "App/System/ThermalEstimate.h"
#include "Core/Energy/PowerSnapshot.h"

#include <filesystem>
#include <string_view>
#include <vector>

/// What the kernel's files say. `root` is "/sys" but for tests. Any thread.
namespace vespra::sysfs {

/// Chargers that are connected, and the batteries of the machine itself taken together; not those of mice or pens.
PowerSnapshot readPower(const std::filesystem::path& root);

/// The thermal zones and the processor's own sensors, as far as they have a usable temperature.
std::vector<ThermalSample> readThermometers(const std::filesystem::path& root);

/// Whether "card0-HDMI-A-1" names a connector that leads out of the machine.
bool isExternalConnector(std::string_view name);

/// Whether any external connector has a display on it.
bool hasExternalDisplay(const std::filesystem::path& root);

} // namespace vespra::sysfs
