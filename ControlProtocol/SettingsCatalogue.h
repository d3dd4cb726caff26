#pragma once

#include "Core/ClosedRange.h"
#include "Core/KeyCombination.h"
#include "Core/Session/SessionPreferences.h"
#include "Core/Session/SessionSettings.h"

#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The catalogue of settings: everything that the user can set, an entry each. It stands here, below vespractl and the
/// application, because both read it: `SettingTexts` for the terminal, settings files, completions and help, the
/// application for its rows, steppers and what it keeps. A new setting is one entry here and one row of its test.
namespace vespra {

/// The value of every setting.
struct UserSettings {
    SessionSettings session;
    SessionPreferences preferences;
    bool playsHeatAlarm = true;
    bool showsRemainingTimeInMenuBar = false;
    std::optional<KeyCombination> toggleSessionKeys = defaultToggleSessionKeys;
    bool didFinishOnboarding = false;

    bool operator==(const UserSettings&) const = default;
};

/// What a setting is kept in. Each of these is written as a whole.
enum class StoredValue {
    sessionSettings,
    sessionPreferences,
    playsHeatAlarm,
    showsRemainingTimeInMenuBar,
    toggleSessionKeys,
    didFinishOnboarding,
};

namespace setting {

    /// Reads and writes one value. What it reads is what counts: a kept value beyond its limits is moved into them.
    template <class Value> struct Field {
        std::function<Value(const UserSettings&)> get;
        /// The value lies within the limits of its setting.
        std::function<void(UserSettings&, const Value&)> set;
    };

    /// On or off.
    struct Flag {
        Field<bool> field;
    };

    struct Percentage {
        Field<std::int64_t> field;
        ClosedRange<std::int64_t> range;
        std::int64_t step;
    };

    /// How a length comes to be absent, which is off.
    enum class Off {
        never,
        /// A switch beside its stepper.
        bySwitch,
        /// One step down from the shortest.
        belowShortest,
    };

    struct Length {
        /// Absent for off, and only where the setting has that.
        Field<std::optional<Seconds>> field;
        ClosedRange<Seconds> range;
        /// Absent: the next of `DurationSteps`.
        std::optional<Seconds> step;
        Off off = Off::never;
        /// What the switch sets.
        Seconds whenSwitchedOn{};
    };

    /// One of `names`, which are the raw values of an enumeration.
    struct Choice {
        Field<std::string_view> field;
        std::vector<std::string_view> names;
    };

    /// To the minute; steppers go by `TimeOfDay::stepped`.
    struct Time {
        Field<TimeOfDay> field;
    };

    struct Keys {
        /// Absent for off.
        Field<std::optional<KeyCombination>> field;
    };

    using Kind = std::variant<Flag, Percentage, Length, Choice, Time, Keys>;

} // namespace setting

/// One setting. Its words are English literals, the keys under which translations are found.
struct Setting {
    /// The names under which it is kept, with dots between them.
    std::string_view key;
    StoredValue storedIn;
    /// What it is for, in a few words, where nothing else stands around it.
    std::string_view meaning;
    /// Its row in the settings window; empty: it has none.
    std::string_view label;
    /// Below that; may be empty.
    std::string_view subtitle;
    setting::Kind kind;
};

/// Every setting, each key once: the session's in the order of the settings window, preferences, the shell's.
const std::vector<Setting>& settingsCatalogue();

/// The setting of this key; null if there is none.
const Setting* findSetting(std::string_view key);

/// Where a stepper goes from `value`: one step within the range. What has nowhere to go stays.
std::int64_t stepped(const setting::Percentage& setting, std::int64_t value, bool forward);
std::optional<Seconds> stepped(const setting::Length& setting, std::optional<Seconds> value, bool forward);

} // namespace vespra
