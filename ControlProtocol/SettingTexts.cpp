#include "ControlProtocol/SettingTexts.h"

#include "ControlProtocol/Arguments.h"
#include "ControlProtocol/Guess.h"
#include "Core/Match.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

namespace vespra::settingTexts {

namespace {

    using namespace setting;

    constexpr std::string_view on = "on", off = "off";

    /// What was expected, or nothing.
    using Refusal = std::optional<std::string>;

    std::string lengthText(const std::optional<Seconds>& length)
    {
        return length ? arguments::lengthText(*length) : std::string{off};
    }

    std::string joined(const std::vector<std::string_view>& words, std::string_view separator, std::string_view last)
    {
        std::string text;
        for (const auto& word : words)
            text.append(text.empty() ? "" : &word == &words.back() ? last : separator).append(word);
        return text;
    }

    std::string expected(const std::string& what, const std::string& text)
    {
        return "expected " + what + ", not \"" + text + "\"";
    }

    Refusal set(const Flag& flag, UserSettings& settings, const std::string& text)
    {
        if (text != on && text != off)
            return expected("on or off", text);
        flag.field.set(settings, text == on);
        return {};
    }

    Refusal set(const Percentage& percentage, UserSettings& settings, const std::string& text)
    {
        std::int64_t percent = 0;
        const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), percent);
        const auto& [lowest, highest] = percentage.range;
        if (error != std::errc{} || rest != text.data() + text.size() || percent < lowest || percent > highest
            || (percent - lowest) % percentage.step != 0)
            return expected("a percentage from " + std::to_string(lowest) + " to " + std::to_string(highest)
                    + " in steps of " + std::to_string(percentage.step),
                text);
        percentage.field.set(settings, percent);
        return {};
    }

    Refusal set(const Length& length, UserSettings& settings, const std::string& text)
    {
        const bool canBeOff = length.off != Off::never;
        if (canBeOff && text == off) {
            length.field.set(settings, {});
            return {};
        }
        const auto given = arguments::length(text, length.range);
        if (!given)
            return given.error() + (canBeOff ? "; or off" : "");
        length.field.set(settings, *given);
        return {};
    }

    Refusal set(const Choice& choice, UserSettings& settings, const std::string& text)
    {
        if (std::ranges::find(choice.names, text) == choice.names.end())
            return expected(joined(choice.names, ", ", " or "), text);
        choice.field.set(settings, text);
        return {};
    }

    Refusal set(const Time& time, UserSettings& settings, const std::string& text)
    {
        const auto given = arguments::timeOfDay(text);
        if (!given)
            return given.error();
        time.field.set(settings, *given);
        return {};
    }

    Refusal set(const Keys& keys, UserSettings& settings, const std::string& text)
    {
        const auto given = keyCombination(text);
        if (!given && text != off)
            return expected("keys such as " + vespra::text(defaultToggleSessionKeys) + ", or off", text);
        keys.field.set(settings, given);
        return {};
    }

    Refusal set(const Setting& setting, UserSettings& settings, const std::string& text)
    {
        return std::visit([&](const auto& kind) { return set(kind, settings, text); }, setting.kind);
    }

    std::vector<std::string> lengths(const Length& length)
    {
        std::vector<std::string> texts;
        if (length.off != Off::never)
            texts.emplace_back(off);
        for (auto each = length.range.lowest; texts.empty() || texts.back() != lengthText(each);
            each = stepped(length, each, true).value_or(each))
            texts.push_back(lengthText(each));
        return texts;
    }

    std::vector<std::string> timesOfDay()
    {
        constexpr TimeOfDay midnight{0, 0};
        std::vector<std::string> texts{arguments::timeOfDayText(midnight)};
        for (auto each = midnight.stepped(true); each != midnight; each = each.stepped(true))
            texts.push_back(arguments::timeOfDayText(each));
        return texts;
    }

    std::string isUnknown(std::string_view key)
    {
        std::vector<std::string_view> list;
        std::vector<std::string> keys;
        for (const auto& setting : settingsCatalogue()) {
            list.push_back(setting.key);
            keys.emplace_back(setting.key);
        }
        const auto nearest = guess(key, keys);
        return expected("one of " + joined(list, ", ", ", "), std::string{key})
            + (nearest ? "; did you mean \"" + *nearest + "\"?" : "");
    }

    /// How a kept time of day is written; any other object as it stands.
    std::string timeText(const JSON& value)
    {
        const auto isNumber
            = [&value](const char* name) { return value.contains(name) && value[name].is_number_unsigned(); };
        if (value.size() != 2 || !isNumber("hour") || !isNumber("minute"))
            return value.dump();
        const auto minute = value["minute"].dump();
        return value["hour"].dump() + (minute.size() == 1 ? ":0" : ":") + minute;
    }

    std::string textOf(const JSON& value, const Kind& kind)
    {
        const auto* const length = std::get_if<Length>(&kind);
        if (value.is_string())
            return value.get<std::string>();
        if (std::holds_alternative<Flag>(kind) && value.is_boolean())
            return std::string{value.get<bool>() ? on : off};
        const bool canBeOff = length ? length->off != Off::never : std::holds_alternative<Keys>(kind);
        if (canBeOff && value.is_null())
            return std::string{off};
        if (std::holds_alternative<Time>(kind) && value.is_object())
            return timeText(value);
        if (value.is_number())
            return numberJSON(value.get<double>()).dump() + (length ? "s" : "");
        return value.dump();
    }

    std::expected<void, std::string> readObject(
        std::vector<Change>& changes, const JSON& object, const std::string& place)
    {
        if (!object.is_object())
            return std::unexpected{(place.empty() ? "" : place + ": ") + "expected an object"};
        for (const auto& [name, value] : object.items()) {
            const auto key = place.empty() ? name : place + "." + name;
            const auto isBelow = [&](const Setting& each) { return each.key.starts_with(key + "."); };
            const auto* const setting = findSetting(key);
            if (!setting && std::ranges::any_of(settingsCatalogue(), isBelow)) {
                if (const auto below = readObject(changes, value, key); !below)
                    return below;
                continue;
            }
            const auto read = change(key, setting ? textOf(value, setting->kind) : "");
            if (!read)
                return std::unexpected{read.error()};
            changes.push_back(*read);
        }
        return {};
    }

} // namespace

std::string text(const Setting& setting, const UserSettings& settings)
{
    return match(
        setting.kind,
        [&](const Flag& flag) { return std::string{flag.field.get(settings) ? on : off}; },
        [&](const Percentage& percentage) { return std::to_string(percentage.field.get(settings)); },
        [&](const Length& length) { return lengthText(length.field.get(settings)); },
        [&](const Choice& choice) { return std::string{choice.field.get(settings)}; },
        [&](const Time& time) { return arguments::timeOfDayText(time.field.get(settings)); },
        [&](const Keys& keys) {
            const auto there = keys.field.get(settings);
            return there ? vespra::text(*there) : std::string{off};
        });
}

std::string range(const Setting& setting)
{
    return match(
        setting.kind,
        [](const Flag&) { return std::string{"on|off"}; },
        [](const Percentage& percentage) {
            return std::to_string(percentage.range.lowest) + ".." + std::to_string(percentage.range.highest) + " by "
                + std::to_string(percentage.step);
        },
        [](const Length& length) {
            return (length.off == Off::never ? "" : "off|") + lengthText(length.range.lowest) + ".."
                + lengthText(length.range.highest);
        },
        [](const Choice& choice) { return joined(choice.names, "|", "|"); },
        [](const Time&) { return std::string{"00:00..23:59"}; },
        [](const Keys&) { return std::string{"off|[ctrl+][alt+][shift+][super+]KEY"}; });
}

std::vector<std::string> values(const Setting& setting)
{
    using Texts = std::vector<std::string>;
    return match(
        setting.kind,
        [](const Flag&) { return Texts{std::string{on}, std::string{off}}; },
        [](const Percentage& percentage) {
            Texts texts;
            for (auto each = percentage.range.lowest; each <= percentage.range.highest; each += percentage.step)
                texts.push_back(std::to_string(each));
            return texts;
        },
        [](const Length& length) { return lengths(length); },
        [](const Choice& choice) { return Texts{choice.names.begin(), choice.names.end()}; },
        [](const Time&) { return timesOfDay(); },
        [](const Keys&) { return Texts{std::string{off}, vespra::text(defaultToggleSessionKeys)}; });
}

std::vector<std::pair<std::string, std::string>> all(const UserSettings& settings)
{
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& setting : settingsCatalogue())
        texts.emplace_back(setting.key, text(setting, settings));
    return texts;
}

std::expected<Change, std::string> change(std::string_view key, const std::string& text)
{
    const auto* const setting = findSetting(key);
    if (!setting)
        return std::unexpected{isUnknown(key)};
    UserSettings any;
    if (const auto refused = set(*setting, any, text))
        return std::unexpected{std::string{key} + ": " + *refused};
    return Change{setting, text};
}

UserSettings changed(UserSettings settings, const std::vector<Change>& changes)
{
    for (const auto& [setting, text] : changes)
        set(*setting, settings, text);
    return settings;
}

std::expected<std::vector<Change>, std::string> read(const JSON& json)
{
    std::vector<Change> changes;
    if (const auto read = readObject(changes, json, {}); !read)
        return std::unexpected{read.error()};
    return changes;
}

std::expected<std::vector<Change>, std::string> file(const std::string& path)
{
    const auto text = arguments::fileContents(path);
    if (!text)
        return std::unexpected{text.error()};
    const auto json = parsedJSON(*text);
    if (!json)
        return std::unexpected{path + ": expected JSON"};
    const auto changes = read(*json);
    if (!changes)
        return std::unexpected{path + ": " + changes.error()};
    return *changes;
}

std::string help(const std::function<std::string_view(std::string_view)>& translated)
{
    std::string lines;
    for (const auto& setting : settingsCatalogue())
        lines.append("\n  ")
            .append(setting.key)
            .append(" ")
            .append(range(setting))
            .append("\n      ")
            .append(translated(setting.meaning));
    return lines;
}

} // namespace vespra::settingTexts
