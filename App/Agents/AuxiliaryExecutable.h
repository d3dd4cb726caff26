#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace vespra {

/// A program that is installed with this one: on macOS in the bundle, elsewhere beside this program's executable or in
/// its libexec folder. Absent if it is not there. One per system.
std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name);

} // namespace vespra
