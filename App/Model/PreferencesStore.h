#pragma once

#include "App/Model/UserDefaults.h"
#include "Core/KeyCombination.h"
#include "Core/Session/SessionPreferences.h"
#include "Core/Session/SessionSettings.h"

/// What the user chose between launches. Every value is read and written whole; one that is missing, of another type or
/// malformed counts as its default, silently. Without defaults (null) nothing is stored. Main thread only.
namespace vespra::PreferencesStore {

SessionPreferences load(const UserDefaults* defaults);
void save(const SessionPreferences& preferences, UserDefaults* defaults);

SessionSettings loadSettings(const UserDefaults* defaults);
void saveSettings(const SessionSettings& settings, UserDefaults* defaults);

/// Whether an alarm sounds when the machine is hot; by default yes.
bool playsHeatAlarm(const UserDefaults* defaults);
void setPlaysHeatAlarm(bool plays, UserDefaults* defaults);

/// By default not.
bool showsRemainingTimeInMenuBar(const UserDefaults* defaults);
void setShowsRemainingTimeInMenuBar(bool shows, UserDefaults* defaults);

/// The keys that start or stop a session; absent where the user wants none.
std::optional<KeyCombination> toggleSessionKeys(const UserDefaults* defaults);
void setToggleSessionKeys(const std::optional<KeyCombination>& keys, UserDefaults* defaults);

/// By default not.
bool didFinishOnboarding(const UserDefaults* defaults);
void setDidFinishOnboarding(bool finished, UserDefaults* defaults);

} // namespace vespra::PreferencesStore
