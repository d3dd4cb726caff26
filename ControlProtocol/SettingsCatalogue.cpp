#include "ControlProtocol/SettingsCatalogue.h"

#include "Core/Session/DurationSteps.h"
#include "Core/Session/SessionLimits.h"

#include <algorithm>

namespace vespra {

namespace {

    using namespace setting;

    /// The field at the end of `path`, a chain of members.
    template <class Value, auto... path> Field<Value> field()
    {
        return {
            [](const UserSettings& settings) -> Value { return (settings.*....*path); },
            [](UserSettings& settings, const Value& value) { (settings.*....*path) = value; },
        };
    }

    template <auto... path> Flag flag() { return {field<bool, path...>()}; }

    template <class Enum, auto... path> Choice choice()
    {
        Choice choice{.field = {
                          [](const UserSettings& settings) { return rawValue((settings.*....*path)); },
                          [](UserSettings& settings, const std::string_view& name) {
                              (settings.*....*path) = fromRawValue<Enum>(name).value_or((settings.*....*path));
                          },
                      }};
        for (const auto& [value, name] : rawValues<Enum>)
            choice.names.push_back(name);
        return choice;
    }

    /// A length that is never off; `counted` makes what counts of what is kept.
    template <auto... path> Field<std::optional<Seconds>> alwaysThere(Seconds (*counted)(Seconds))
    {
        return {
            [counted](const UserSettings& settings) { return counted((settings.*....*path)); },
            [](UserSettings& settings, const std::optional<Seconds>& value) {
                (settings.*....*path) = value.value_or((settings.*....*path));
            },
        };
    }

    constexpr auto session = &UserSettings::session;
    constexpr auto energy = &SessionSettings::energy;
    constexpr auto agents = &SessionSettings::agents;
    constexpr auto preferences = &UserSettings::preferences;
    constexpr auto options = &SessionPreferences::options;

    constexpr ClosedRange<Seconds> timerRange{SessionLimits::minimumDuration, SessionLimits::maximumDuration};

    Percentage lowBatteryThreshold()
    {
        return {
            .field = {
                [](const UserSettings& settings) { return settings.session.energy.effectiveLowBatteryThreshold(); },
                field<std::int64_t, session, energy, &EnergyPolicy::lowBatteryThreshold>().set,
            },
            .range = EnergyPolicy::thresholdRange,
            .step = EnergyPolicy::thresholdStep,
        };
    }

    std::vector<Setting> sessionSettings()
    {
        constexpr auto storedIn = StoredValue::sessionSettings;
        return {
            {"energy.requiresACPower",
                storedIn,
                "Require the charger",
                "Require the charger",
                "Unplugging the charger ends the session. Plugging it back in doesn't restart it.",
                flag<session, energy, &EnergyPolicy::requiresACPower>()},
            {"energy.stopsOnLowBattery",
                storedIn,
                "Stop on low battery",
                "Stop on low battery",
                "Protects your battery when the Mac isn't plugged in. The session ends and the Mac can sleep.",
                flag<session, energy, &EnergyPolicy::stopsOnLowBattery>()},
            {"energy.lowBatteryThreshold",
                storedIn,
                "Battery level that counts as low, in percent",
                "Threshold",
                "",
                lowBatteryThreshold()},
            {"energy.batteryTimeLimit",
                storedIn,
                "Limit time on battery",
                "Limit time on battery",
                "",
                Length{
                    .field = field<std::optional<Seconds>, session, energy, &EnergyPolicy::batteryTimeLimit>(),
                    .range = {15min, 8h},
                    .step = 15min,
                    .off = Off::bySwitch,
                    .whenSwitchedOn = 1h,
                }},
            {"closedLid.continuesOnBattery",
                storedIn,
                "Keep going on battery with the lid closed",
                "Keep going on battery",
                "Allows closed-lid mode without the charger. The low-battery threshold still applies. A closed Mac in "
                "a bag gets warmer.",
                flag<session, &SessionSettings::closedLid, &ClosedLidPolicy::continuesOnBattery>()},
            {"agents.endAction",
                storedIn,
                "When agents are done",
                "When agents are done",
                "",
                choice<AgentEndAction, session, agents, &AgentPolicy::endAction>()},
            {"agents.graceDelay",
                storedIn,
                "Delay before ending when agents are done",
                "Delay before ending",
                "",
                Length{
                    .field = alwaysThere<session, agents, &AgentPolicy::graceDelay>(
                        [](Seconds kept) { return AgentPolicy::graceRange.clamped(kept); }),
                    .range = AgentPolicy::graceRange,
                    .step = 1min,
                }},
            {"agents.waitingCountsAsFinished",
                storedIn,
                "Waiting for approval counts as done",
                "Waiting for approval counts as done",
                "",
                flag<session, agents, &AgentPolicy::waitingCountsAsFinished>()},
            {"agentSafetyCap",
                storedIn,
                "Safety limit of agent sessions",
                "Safety limit",
                "",
                Length{
                    .field = field<std::optional<Seconds>, session, &SessionSettings::agentSafetyCap>(),
                    .range = {1h, SessionLimits::maximumDuration},
                    .step = 1h,
                    .off = Off::belowShortest,
                }},
        };
    }

    std::vector<Setting> startPreferences()
    {
        constexpr auto storedIn = StoredValue::sessionPreferences;
        return {
            {"preferences.mode",
                storedIn,
                "How the next session ends",
                "",
                "",
                choice<SessionMode, preferences, &SessionPreferences::mode>()},
            {"preferences.timerDuration",
                storedIn,
                "Length of a timer session",
                "",
                "",
                Length{
                    .field
                    = alwaysThere<preferences, &SessionPreferences::timerDuration>(SessionLimits::clampedDuration),
                    .range = timerRange,
                }},
            {"preferences.untilTime",
                storedIn,
                "Time of day until which a session lasts",
                "",
                "",
                Time{field<TimeOfDay, preferences, &SessionPreferences::untilTime>()}},
            {"preferences.options.keepsDisplayAwake",
                storedIn,
                "Keep display on during sessions",
                "Keep display on during sessions",
                "",
                flag<preferences, options, &SessionOptions::keepsDisplayAwake>()},
            {"preferences.options.closedLid",
                storedIn,
                "Stay awake with the lid closed",
                "",
                "",
                flag<preferences, options, &SessionOptions::closedLid>()},
        };
    }

    std::vector<Setting> shellSettings()
    {
        return {
            {"showsRemainingTimeInMenuBar",
                StoredValue::showsRemainingTimeInMenuBar,
                "Time left in the menu bar",
                "Time left in the menu bar",
                "",
                flag<&UserSettings::showsRemainingTimeInMenuBar>()},
            {"playsHeatAlarm",
                StoredValue::playsHeatAlarm,
                "Sound alert when the Mac runs hot",
                "Sound alert when the Mac runs hot",
                "",
                flag<&UserSettings::playsHeatAlarm>()},
            {"toggleSessionShortcut",
                StoredValue::toggleSessionKeys,
                "Keys that start or stop a session, from any app",
                "",
                "",
                Keys{field<std::optional<KeyCombination>, &UserSettings::toggleSessionKeys>()}},
            {"didFinishOnboarding",
                StoredValue::didFinishOnboarding,
                "The introduction has been shown",
                "",
                "",
                flag<&UserSettings::didFinishOnboarding>()},
        };
    }

} // namespace

const std::vector<Setting>& settingsCatalogue()
{
    static const auto catalogue = [] {
        auto all = sessionSettings();
        for (const auto& more : {startPreferences(), shellSettings()})
            all.insert(all.end(), more.begin(), more.end());
        return all;
    }();
    return catalogue;
}

const Setting* findSetting(std::string_view key)
{
    const auto& all = settingsCatalogue();
    const auto found = std::ranges::find(all, key, &Setting::key);
    return found == all.end() ? nullptr : &*found;
}

std::int64_t stepped(const Percentage& setting, std::int64_t value, bool forward)
{
    return setting.range.clamped(value + (forward ? setting.step : -setting.step));
}

std::optional<Seconds> stepped(const Length& setting, std::optional<Seconds> value, bool forward)
{
    const auto& [lowest, highest] = setting.range;
    if (!value)
        return forward && setting.off == Off::belowShortest ? std::optional{lowest} : std::nullopt;
    if (!forward && setting.off == Off::belowShortest && *value <= lowest)
        return {};
    if (setting.step)
        return setting.range.clamped(*value + (forward ? *setting.step : -*setting.step));
    const auto next = forward ? DurationSteps::next(*value) : DurationSteps::previous(*value);
    return setting.range.clamped(next.value_or(*value));
}

} // namespace vespra
