#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vespra::doctor {

/// What logind's files set `key` to; absent if they do not, and the default of logind holds. `root` is "/" but for
/// tests.
std::optional<std::string> logindSetting(const std::filesystem::path& root, std::string_view key);

/// Whether `value` switches a setting on, as systemd reads it.
bool saysYes(std::string_view value);

} // namespace vespra::doctor
