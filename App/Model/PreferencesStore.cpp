#include "App/Model/PreferencesStore.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace vespra::PreferencesStore {

namespace {

    constexpr std::string_view preferencesKey = "sessionPreferences", settingsKey = "sessionSettings",
                               heatAlarmKey = "playsHeatAlarm", remainingTimeKey = "showsRemainingTimeInMenuBar",
                               onboardingKey = "didFinishOnboarding", shortcutKey = "toggleSessionShortcut",
                               noKeys = "off";

    std::optional<JSON> storedJSON(const UserDefaults* defaults, std::string_view key)
    {
        const auto data = defaults ? defaults->data(key) : std::nullopt;
        return data ? parsedJSON(*data) : std::nullopt;
    }

    bool storedBoolean(const UserDefaults* defaults, std::string_view key, bool fallback)
    {
        return defaults ? defaults->boolean(key).value_or(fallback) : fallback;
    }

    /// JSON has no infinity; a value that holds one is not written.
    bool canEncode(Seconds length) { return std::isfinite(length.count()); }

    bool canEncode(const std::optional<Seconds>& length) { return !length || canEncode(*length); }

} // namespace

SessionPreferences load(const UserDefaults* defaults)
{
    const auto json = storedJSON(defaults, preferencesKey);
    return json ? sessionPreferences(*json).value_or(SessionPreferences{}) : SessionPreferences{};
}

void save(const SessionPreferences& preferences, UserDefaults* defaults)
{
    if (defaults && canEncode(preferences.timerDuration))
        defaults->setData(preferencesKey, toJSON(preferences).dump());
}

SessionSettings loadSettings(const UserDefaults* defaults)
{
    const auto json = storedJSON(defaults, settingsKey);
    return json ? decoded(JSONSource{*json}, readSessionSettings).value_or(SessionSettings{}) : SessionSettings{};
}

void saveSettings(const SessionSettings& settings, UserDefaults* defaults)
{
    if (!defaults || !canEncode(settings.energy.batteryTimeLimit) || !canEncode(settings.agentSafetyCap)
        || !canEncode(settings.agents.graceDelay))
        return;
    auto json = toJSON(settings);
    // A cap that is missing would be read as the default one.
    if (!settings.agentSafetyCap)
        json["agentSafetyCap"] = nullptr;
    defaults->setData(settingsKey, json.dump());
}

bool playsHeatAlarm(const UserDefaults* defaults) { return storedBoolean(defaults, heatAlarmKey, true); }

void setPlaysHeatAlarm(bool plays, UserDefaults* defaults)
{
    if (defaults)
        defaults->setBoolean(heatAlarmKey, plays);
}

bool showsRemainingTimeInMenuBar(const UserDefaults* defaults)
{
    return storedBoolean(defaults, remainingTimeKey, false);
}

void setShowsRemainingTimeInMenuBar(bool shows, UserDefaults* defaults)
{
    if (defaults)
        defaults->setBoolean(remainingTimeKey, shows);
}

std::optional<KeyCombination> toggleSessionKeys(const UserDefaults* defaults)
{
    const auto stored = defaults ? defaults->data(shortcutKey) : std::nullopt;
    if (stored == noKeys)
        return {};
    const auto keys = stored ? keyCombination(*stored) : std::nullopt;
    return keys.value_or(defaultToggleSessionKeys);
}

void setToggleSessionKeys(const std::optional<KeyCombination>& keys, UserDefaults* defaults)
{
    if (defaults)
        defaults->setData(shortcutKey, keys ? text(*keys) : std::string{noKeys});
}

bool didFinishOnboarding(const UserDefaults* defaults) { return storedBoolean(defaults, onboardingKey, false); }

void setDidFinishOnboarding(bool finished, UserDefaults* defaults)
{
    if (defaults)
        defaults->setBoolean(onboardingKey, finished);
}

} // namespace vespra::PreferencesStore
