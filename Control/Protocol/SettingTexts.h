#pragma once

#include "Core/Session/SessionSettings.h"

#include <expected>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The session settings as texts, each under a key of its own: what people read and write in a terminal.
namespace vespra::settingTexts {

/// Every setting in the order of the settings window: {"energy.lowBatteryThreshold", "20"}, {"agentSafetyCap", "12h"}.
std::vector<std::pair<std::string, std::string>> all(const SessionSettings& settings);

/// `settings` with one of them changed, within the limits of the settings window. Fails with a sentence that says what
/// was expected, for the key or for its value.
std::expected<SessionSettings, std::string> changed(
    SessionSettings settings, std::string_view key, const std::string& text);

/// "KEY on|off ...", a line for each key: for help.
std::string help();

} // namespace vespra::settingTexts
