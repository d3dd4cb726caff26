#pragma once

#include <filesystem>
#include <optional>

namespace vespra {

/// A file that ships with the program, such as "sounds/heat-alarm.wav": on macOS in the bundle's resources, elsewhere
/// below share/Vespra beside the folder of this program, in the build as where it is installed. Absent if it is not
/// there. One per system.
std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name);

/// The sound of the heat alarm.
inline constexpr auto heatAlarmSound = "sounds/heat-alarm.wav";

} // namespace vespra
