#include "App/System/simulated/MachineState.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vespra {

namespace {

    struct Key {
        std::string_view name;
        /// What it takes, as the help shows it.
        std::string_view values;
        /// False for a value that it does not take.
        bool (*set)(MachineChange& change, std::string_view value);
        /// Empty for what happens once and is not part of the state.
        std::string (*get)(const MachineState& state);
    };

    bool setBattery(MachineChange& change, std::string_view value)
    {
        if (value == "none") {
            change.state.battery.reset();
            return true;
        }
        int percent = -1;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), percent);
        if (error != std::errc{} || end != value.data() + value.size() || percent < 0 || percent > 100)
            return false;
        change.state.battery = percent;
        return true;
    }

    template <bool MachineState::* flag>
    bool setFlag(MachineChange& change, std::string_view value, std::string_view whenTrue, std::string_view whenFalse)
    {
        if (value != whenTrue && value != whenFalse)
            return false;
        change.state.*flag = value == whenTrue;
        return true;
    }

    bool setThermal(MachineChange& change, std::string_view value)
    {
        const auto level = fromRawValue<ThermalLevel>(value);
        if (level)
            change.state.thermal = *level;
        return level.has_value();
    }

    bool setHelper(MachineChange& change, std::string_view value)
    {
        const auto mode = fromRawValue<SimulatedHelperMode>(value);
        if (mode)
            change.state.helper = *mode;
        return mode.has_value();
    }

    bool setSleep(MachineChange& change, std::string_view value)
    {
        change.sleepsNow = true;
        return value == "now";
    }

    template <bool Appearance::* flag>
    bool setAppearance(
        MachineChange& change, std::string_view value, std::string_view whenTrue, std::string_view whenFalse)
    {
        change.state.appearance.*flag = value == whenTrue;
        return value == whenTrue || value == whenFalse;
    }

    bool setShortcut(MachineChange& change, std::string_view value)
    {
        change.pressesShortcut = true;
        return value == "pressed";
    }

    bool setUpdate(MachineChange& change, std::string_view value)
    {
        change.update = value;
        return !value.empty();
    }

    /// The notification, and behind a slash the button; without one the notification itself is clicked.
    bool setPress(MachineChange& change, std::string_view value)
    {
        const auto slash = value.find('/');
        const auto action = slash == std::string_view::npos ? std::string_view{} : value.substr(slash + 1);
        change.response = {.notification = std::string{value.substr(0, slash)}, .action = std::string{action}};
        return !change.response->notification.empty() && (slash == std::string_view::npos || !action.empty());
    }

    using Change = MachineChange;
    using State = MachineState;
    using Text = std::string_view;

    constexpr std::array<Key, 14> keys{{
        {"battery",
            "0..100|none",
            setBattery,
            [](const State& state) { return state.battery ? std::to_string(*state.battery) : "none"; }},
        {"charger",
            "on|off",
            [](Change& change, Text value) { return setFlag<&State::hasCharger>(change, value, "on", "off"); },
            [](const State& state) -> std::string { return state.hasCharger ? "on" : "off"; }},
        {"lid",
            "open|closed",
            [](Change& change, Text value) { return setFlag<&State::isLidClosed>(change, value, "closed", "open"); },
            [](const State& state) -> std::string { return state.isLidClosed ? "closed" : "open"; }},
        {"display",
            "internal|external",
            [](Change& change, Text value) {
                return setFlag<&State::hasExternalDisplay>(change, value, "external", "internal");
            },
            [](const State& state) -> std::string { return state.hasExternalDisplay ? "external" : "internal"; }},
        {"screen",
            "on|off",
            [](Change& change, Text value) { return setFlag<&State::isScreenOn>(change, value, "on", "off"); },
            [](const State& state) -> std::string { return state.isScreenOn ? "on" : "off"; }},
        {"thermal",
            "nominal|fair|serious|critical",
            setThermal,
            [](const State& state) { return std::string{rawValue(state.thermal)}; }},
        {"helper",
            "ready|notInstalled|awaitingApproval|failed|noBuiltInDisplay|unsignedBuild|refusing|outdated|stuck",
            setHelper,
            [](const State& state) { return std::string{rawValue(state.helper)}; }},
        {"appearance",
            "light|dark",
            [](Change& change, Text value) {
                return setAppearance<&Appearance::isDark>(change, value, "dark", "light");
            },
            [](const State& state) -> std::string { return state.appearance.isDark ? "dark" : "light"; }},
        {"contrast",
            "normal|high",
            [](Change& change, Text value) {
                return setAppearance<&Appearance::hasHighContrast>(change, value, "high", "normal");
            },
            [](const State& state) -> std::string { return state.appearance.hasHighContrast ? "high" : "normal"; }},
        {"motion",
            "full|reduced",
            [](Change& change, Text value) {
                return setAppearance<&Appearance::reducesMotion>(change, value, "reduced", "full");
            },
            [](const State& state) -> std::string { return state.appearance.reducesMotion ? "reduced" : "full"; }},
        {"sleep", "now", setSleep, nullptr},
        {"shortcut", "pressed", setShortcut, nullptr},
        {"update", "VERSION", setUpdate, nullptr},
        {"press", "NOTIFICATION[/ACTION]", setPress, nullptr},
    }};

} // namespace

std::expected<MachineChange, std::string> changed(const MachineState& state, const MachineSettings& settings)
{
    MachineChange change;
    change.state = state;
    for (const auto& [name, value] : settings) {
        const auto* key = std::ranges::find(keys, name, &Key::name);
        if (key == keys.end())
            return std::unexpected{"\"" + name + "\" is nothing to set; there are: " + machineSettingsHelp()};
        if (!key->set(change, value))
            return std::unexpected{
                name + " takes " + std::string{key->values} + ", not \"" + value + "\"; nothing was changed"};
    }
    return change;
}

MachineSettings machineSettings(const MachineState& state)
{
    MachineSettings settings;
    for (const auto& key : keys)
        if (key.get)
            settings.emplace_back(key.name, key.get(state));
    return settings;
}

std::expected<MachineSettings::value_type, std::string> machineSetting(const std::string& text)
{
    const auto equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        return std::unexpected{"\"" + text + "\" is not of the form KEY=VALUE; there are: " + machineSettingsHelp()};
    return MachineSettings::value_type{text.substr(0, equals), text.substr(equals + 1)};
}

std::string machineSettingsHelp()
{
    std::string help;
    for (const auto& key : keys)
        help += (help.empty() ? "" : " ") + std::string{key.name} + "=" + std::string{key.values};
    return help;
}

} // namespace vespra
