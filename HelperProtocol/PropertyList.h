#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// The text under `key` in the application's property list; absent if it is missing or not a text. One per system.
std::optional<std::string> propertyListText(std::string_view key);

/// The folder below `home` where this system keeps applications' data. One per system.
std::string supportDirectory(std::string_view home);

/// The same for this user; the environment may move it. One per system.
std::string supportDirectory();

/// $HOME; without it the home directory in the user's entry of the password file, and "/" where that has none. One per
/// system.
std::string homeDirectory();

} // namespace vespra
