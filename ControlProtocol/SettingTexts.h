#pragma once

#include "Core/Coding/JSON.h"
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

/// The settings in a JSON object, each under its key or in objects below its parts: {"agentSafetyCap":"12h"} and
/// {"energy":{"requiresACPower":false}}. A value is a text as above, or true and false, seconds, percent, null for off.
/// What is not there has its default; anything else fails with a sentence that names the place.
std::expected<SessionSettings, std::string> read(const JSON& json);

/// The same from the file at `path`; "-" is standard input.
std::expected<SessionSettings, std::string> file(const std::string& path);

/// "KEY on|off ...", a line for each key: for help.
std::string help();

} // namespace vespra::settingTexts
