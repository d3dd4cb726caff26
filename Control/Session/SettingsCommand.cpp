#include "ControlProtocol/SettingTexts.h"
#include "Control/Session/Application.h"

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace vespra::control {

namespace {

    /// Without a key all of them.
    int get(const std::optional<std::string>& key, bool asJSON)
    {
        int exitStatus = done;
        const int asked = ask({.verb = ControlVerb::settings}, [&](const JSON& reply) {
            const auto settings = reply.value("settings", JSON::object());
            if (key && settings.contains(*key))
                std::printf("%s\n", settings.value(*key, std::string{}).c_str());
            else if (key)
                exitStatus = badInput;
            else if (asJSON)
                std::printf("%s\n", settings.dump().c_str());
            else
                for (const auto& [each, value] : settings.items())
                    std::printf("%s=%s\n", each.c_str(), value.get<std::string>().c_str());
        });
        if (exitStatus == badInput)
            say(badInput, "expected one of these keys, not \"" + *key + "\":" + settingTexts::help());
        return asked == done ? exitStatus : asked;
    }

} // namespace

void addSettingsCommand(CLI::App& vespractl, int& exitStatus)
{
    auto* settings = vespractl.add_subcommand("settings", "Reads and changes the guardrails and agent settings");
    settings->require_subcommand(1);

    const auto wanted = std::make_shared<std::optional<std::string>>();
    auto* getting = settings->add_subcommand("get", "Prints one setting, or all of them");
    getting->add_option_function<std::string>(
        "KEY", [wanted](const std::string& key) { *wanted = key; }, "As \"settings get\" lists them");
    const auto asJSON = std::make_shared<bool>(false);
    getting->add_flag("--json", *asJSON, "All of them as one line of JSON");
    getting->callback([=, &exitStatus] { exitStatus = get(*wanted, *asJSON); });

    const auto key = std::make_shared<std::string>(), value = std::make_shared<std::string>();
    auto* setting
        = settings->add_subcommand("set", "Changes one; it is kept, and counts at once" + settingTexts::help());
    setting->add_option("KEY", *key)->required();
    setting->add_option("VALUE", *value)->required();
    setting->callback([=, &exitStatus] { exitStatus = ask({.verb = ControlVerb::set, .key = *key, .value = *value}); });
}

} // namespace vespra::control
