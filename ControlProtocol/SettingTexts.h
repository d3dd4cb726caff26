#pragma once

#include "ControlProtocol/SettingsCatalogue.h"
#include "Core/Coding/JSON.h"

#include <expected>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The settings as texts: what people read and write in a terminal, and in settings files.
namespace vespra::settingTexts {

/// "on", "20", "12h", "off", "letSleep", "18:30".
std::string text(const Setting& setting, const UserSettings& settings);

/// What it takes: "on|off", "10..80 by 5", "off|1h..24h", "letSleep|sleepNow|shutDown".
std::string range(const Setting& setting);

/// The values that a switch, a menu or a stepper would offer, in their order.
std::vector<std::string> values(const Setting& setting);

/// Every setting in the catalogue's order: {"energy.lowBatteryThreshold", "20"}, {"agentSafetyCap", "12h"}.
std::vector<std::pair<std::string, std::string>> all(const UserSettings& settings);

/// A setting and the text of a value that it takes.
using Change = std::pair<const Setting*, std::string>;

/// Fails with a sentence that says what was expected, for the key or for its value.
std::expected<Change, std::string> change(std::string_view key, const std::string& text);

/// `settings` after these changes.
UserSettings changed(UserSettings settings, const std::vector<Change>& changes);

/// The settings in a JSON object, each under its key or in objects below its parts: {"agentSafetyCap":"12h"} and
/// {"energy":{"requiresACPower":false}}. A value is a text as above, or as it is kept: true and false, seconds,
/// percent, null for off, {"hour":18,"minute":30}. Fails with a sentence that names the place.
std::expected<std::vector<Change>, std::string> read(const JSON& json);

/// The same from the file at `path`; "-" is standard input.
std::expected<std::vector<Change>, std::string> file(const std::string& path);

/// "KEY RANGE" and the meaning, two lines for each: for help. `translated` is told each meaning.
std::string help(const std::function<std::string_view(std::string_view)>& translated);

} // namespace vespra::settingTexts
