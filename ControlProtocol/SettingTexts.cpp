#include "ControlProtocol/SettingTexts.h"

#include "ControlProtocol/Arguments.h"
#include "ControlProtocol/Guess.h"
#include "Core/Session/SessionLimits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <nlohmann/json.hpp>

namespace vespra::settingTexts {

namespace {

    constexpr ClosedRange<Seconds> batteryTimeRange{15min, 8h};
    constexpr ClosedRange<Seconds> safetyCapRange{1h, SessionLimits::maximumDuration};
    constexpr std::string_view off = "off";

    using Result = std::expected<void, std::string>;

    /// How the JSON values of a setting are written as texts.
    enum class Kind { flag, number, length, optionalLength, name };

    /// One setting: what it takes, how it reads, and how a text is written into it.
    struct Setting {
        Kind kind;
        std::string_view key;
        std::string_view values;
        std::function<std::string(const SessionSettings&)> get;
        std::function<Result(SessionSettings&, const std::string&)> set;
    };

    Result setFlag(bool& flag, const std::string& text)
    {
        if (text != "on" && text != off)
            return std::unexpected{"expected on or off, not \"" + text + "\""};
        flag = text == "on";
        return {};
    }

    Setting flag(std::string_view key, const std::function<bool&(SessionSettings&)>& member)
    {
        return {Kind::flag,
            key,
            "on|off",
            [member](const SessionSettings& settings) {
                auto copy = settings;
                return std::string{member(copy) ? "on" : off};
            },
            [member](SessionSettings& settings, const std::string& text) { return setFlag(member(settings), text); }};
    }

    Result setLength(Seconds& length, const std::string& text, ClosedRange<Seconds> range)
    {
        const auto given = arguments::length(text, range);
        if (!given)
            return std::unexpected{given.error()};
        length = *given;
        return {};
    }

    Result setOptionalLength(std::optional<Seconds>& length, const std::string& text, ClosedRange<Seconds> range)
    {
        if (text == off) {
            length.reset();
            return {};
        }
        if (const auto set = setLength(length.emplace(), text, range); !set)
            return std::unexpected{set.error() + "; or off"};
        return {};
    }

    std::string lengthText(const std::optional<Seconds>& length)
    {
        return length ? arguments::lengthText(*length) : std::string{off};
    }

    Result setThreshold(SessionSettings& settings, const std::string& text)
    {
        std::int64_t percent = 0;
        const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), percent);
        constexpr auto range = EnergyPolicy::thresholdRange;
        if (error != std::errc{} || rest != text.data() + text.size() || range.clamped(percent) != percent
            || EnergyPolicy::normalizedThreshold(percent) != percent)
            return std::unexpected{"expected a percentage from " + std::to_string(range.lowest) + " to "
                + std::to_string(range.highest) + " in steps of " + std::to_string(EnergyPolicy::thresholdStep)
                + ", not \"" + text + "\""};
        settings.energy.lowBatteryThreshold = percent;
        return {};
    }

    Result setEndAction(SessionSettings& settings, const std::string& text)
    {
        const auto action = fromRawValue<AgentEndAction>(text);
        if (!action)
            return std::unexpected{"expected letSleep, sleepNow or shutDown, not \"" + text + "\""};
        settings.agents.endAction = *action;
        return {};
    }

    const auto& table()
    {
        static const std::array settings{
            flag("energy.requiresACPower", [](auto& all) -> bool& { return all.energy.requiresACPower; }),
            flag("energy.stopsOnLowBattery", [](auto& all) -> bool& { return all.energy.stopsOnLowBattery; }),
            Setting{Kind::number,
                "energy.lowBatteryThreshold",
                "10..80",
                [](const auto& all) { return std::to_string(all.energy.effectiveLowBatteryThreshold()); },
                setThreshold},
            Setting{Kind::optionalLength,
                "energy.batteryTimeLimit",
                "off|15m..8h",
                [](const auto& all) { return lengthText(all.energy.batteryTimeLimit); },
                [](auto& all, const auto& text) {
                    return setOptionalLength(all.energy.batteryTimeLimit, text, batteryTimeRange);
                }},
            flag("closedLid.continuesOnBattery", [](auto& all) -> bool& { return all.closedLid.continuesOnBattery; }),
            Setting{Kind::name,
                "agents.endAction",
                "letSleep|sleepNow|shutDown",
                [](const auto& all) { return std::string{rawValue(all.agents.endAction)}; },
                setEndAction},
            Setting{Kind::length,
                "agents.graceDelay",
                "0s..15m",
                [](const auto& all) { return lengthText(all.agents.effectiveGraceDelay()); },
                [](auto& all, const auto& text) {
                    return setLength(all.agents.graceDelay, text, AgentPolicy::graceRange);
                }},
            flag("agents.waitingCountsAsFinished",
                [](auto& all) -> bool& { return all.agents.waitingCountsAsFinished; }),
            Setting{Kind::optionalLength,
                "agentSafetyCap",
                "off|1h..24h",
                [](const auto& all) { return lengthText(all.agentSafetyCap); },
                [](auto& all, const auto& text) {
                    return setOptionalLength(all.agentSafetyCap, text, safetyCapRange);
                }},
        };
        return settings;
    }

    const Setting* found(std::string_view key)
    {
        const auto* const setting = std::ranges::find(table(), key, &Setting::key);
        return setting == table().end() ? nullptr : setting;
    }

    std::string unknown(std::string_view key)
    {
        std::string list;
        std::vector<std::string> keys;
        for (const auto& setting : table()) {
            keys.emplace_back(setting.key);
            list += (list.empty() ? "" : ", ") + keys.back();
        }
        const auto nearest = guess(key, keys);
        return "expected one of " + list + ", not \"" + std::string{key} + "\""
            + (nearest ? "; did you mean \"" + *nearest + "\"?" : "");
    }

    std::string textOf(const JSON& value, Kind kind)
    {
        const bool isLength = kind == Kind::length || kind == Kind::optionalLength;
        if (value.is_string())
            return value.get<std::string>();
        if (kind == Kind::flag && value.is_boolean())
            return value.get<bool>() ? "on" : "off";
        if (kind == Kind::optionalLength && value.is_null())
            return std::string{off};
        if (value.is_number())
            return numberJSON(value.get<double>()).dump() + (isLength ? "s" : "");
        return value.dump();
    }

    std::expected<SessionSettings, std::string> withObject(
        SessionSettings settings, const JSON& object, const std::string& place)
    {
        if (!object.is_object())
            return std::unexpected{(place.empty() ? "" : place + ": ") + "expected an object"};
        for (const auto& [name, value] : object.items()) {
            const auto key = place.empty() ? name : place + "." + name;
            const auto* const setting = found(key);
            const auto isBelow = [&](const Setting& each) { return each.key.starts_with(key + "."); };
            const auto next = !setting && std::ranges::any_of(table(), isBelow)
                ? withObject(settings, value, key)
                : changed(settings, key, setting ? textOf(value, setting->kind) : "");
            if (!next)
                return next;
            settings = *next;
        }
        return settings;
    }

} // namespace

std::vector<std::pair<std::string, std::string>> all(const SessionSettings& settings)
{
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& setting : table())
        texts.emplace_back(setting.key, setting.get(settings));
    return texts;
}

std::expected<SessionSettings, std::string> changed(
    SessionSettings settings, std::string_view key, const std::string& text)
{
    const auto* const setting = found(key);
    if (!setting)
        return std::unexpected{unknown(key)};
    if (const auto set = setting->set(settings, text); !set)
        return std::unexpected{std::string{key} + ": " + set.error()};
    return settings;
}

std::expected<SessionSettings, std::string> read(const JSON& json) { return withObject({}, json, {}); }

std::expected<SessionSettings, std::string> file(const std::string& path)
{
    const auto text = arguments::fileContents(path);
    if (!text)
        return std::unexpected{text.error()};
    const auto json = parsedJSON(*text);
    if (!json)
        return std::unexpected{path + ": expected JSON"};
    const auto settings = read(*json);
    if (!settings)
        return std::unexpected{path + ": " + settings.error()};
    return *settings;
}

std::string help()
{
    std::string lines;
    for (const auto& setting : table())
        lines += "\n  " + std::string{setting.key} + " " + std::string{setting.values};
    return lines;
}

} // namespace vespra::settingTexts
