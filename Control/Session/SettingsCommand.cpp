#include "App/Wording/SystemText.h"
#include "Control/Session/Application.h"
#include "ControlProtocol/SettingTexts.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace vespra::control {

namespace {

    void printText(const std::string& line) { std::printf("%s\n", line.c_str()); }

    /// Gives `use` the value of every setting under its key.
    int askSettings(const std::function<void(const JSON&)>& use)
    {
        return ask(
            {.verb = ControlVerb::settings}, [&](const JSON& reply) { use(reply.value("settings", JSON::object())); });
    }

    /// Without a key all of them.
    int get(const std::optional<std::string>& key, bool asJSON)
    {
        if (key && !findSetting(*key))
            return say(badInput, settingTexts::change(*key, {}).error());
        return askSettings([&](const JSON& settings) {
            if (key)
                printText(settings.value(*key, std::string{}));
            else if (asJSON)
                printText(settings.dump());
            else
                for (const auto& [each, value] : settings.items())
                    printText(each + "=" + value.get<std::string>());
        });
    }

    /// Key, value, range and meaning.
    using Row = std::array<std::string, 4>;

    std::vector<Row> rows(const JSON& settings)
    {
        std::vector<Row> rows;
        for (const auto& each : settingsCatalogue()) {
            const std::string key{each.key};
            rows.push_back({key,
                settings.value(key, std::string{}),
                settingTexts::range(each),
                std::string{systemText(each.meaning)}});
        }
        return rows;
    }

    void printAligned(std::vector<Row> rows)
    {
        for (std::size_t column = 0; column + 1 < Row{}.size(); ++column) {
            std::size_t width = 0;
            for (const auto& row : rows)
                width = std::max(width, row[column].size());
            for (auto& row : rows)
                row[column].resize(width, ' ');
        }
        for (const auto& [key, value, range, meaning] : rows)
            printText(key + "  " + value + "  " + range + "  " + meaning);
    }

    void printJSON(const std::vector<Row>& rows)
    {
        auto list = JSON::array();
        for (const auto& [key, value, range, meaning] : rows)
            list.push_back({{"key", key}, {"value", value}, {"range", range}, {"meaning", meaning}});
        printText(list.dump());
    }

    /// What may stand at this place, a line each: a key, a tab and its meaning, or a value of the setting `key`. For
    /// the shells, so without the application.
    int complete(const std::string& key)
    {
        if (const auto* const setting = findSetting(key))
            for (const auto& value : settingTexts::values(*setting))
                printText(value);
        else if (key.empty())
            for (const auto& each : settingsCatalogue())
                printText(std::string{each.key} + "\t" + std::string{systemText(each.meaning)});
        return done;
    }

} // namespace

void addSettingsCommand(CLI::App& vespractl, int& exitStatus)
{
    auto* settings = vespractl.add_subcommand("settings", "Reads and changes what you can set");
    settings->require_subcommand(1);
    const auto asJSON = std::make_shared<bool>(false);

    auto* listing = settings->add_subcommand("list", "Prints the key, value, range and meaning of each");
    listing->add_flag("--json", *asJSON, "As one line of JSON");
    listing->callback([=, &exitStatus] {
        exitStatus
            = askSettings([&](const JSON& values) { *asJSON ? printJSON(rows(values)) : printAligned(rows(values)); });
    });

    const auto wanted = std::make_shared<std::optional<std::string>>();
    auto* getting = settings->add_subcommand("get", "Prints one setting, or all of them");
    getting->add_option_function<std::string>(
        "KEY", [wanted](const std::string& key) { *wanted = key; }, "As \"settings list\" has them");
    getting->add_flag("--json", *asJSON, "All of them as one line of JSON");
    getting->callback([=, &exitStatus] { exitStatus = get(*wanted, *asJSON); });

    const auto key = std::make_shared<std::string>(), value = std::make_shared<std::string>();
    auto* setting = settings->add_subcommand("set",
        "Changes one; it is kept, and counts at once; preferences count for the next session"
            + settingTexts::help(systemText));
    setting->add_option("KEY", *key)->required();
    setting->add_option("VALUE", *value)->required();
    setting->callback([=, &exitStatus] { exitStatus = ask({.verb = ControlVerb::set, .key = *key, .value = *value}); });

    auto* completion = settings->add_subcommand("complete")->group("");
    completion->add_option("KEY", *key);
    completion->callback([=, &exitStatus] { exitStatus = complete(*key); });
}

} // namespace vespra::control
