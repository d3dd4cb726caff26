#include "App/System/simulated/MachineProtocol.h"

#include "Core/Coding/JSON.h"
#include "HelperProtocol/Brand.h"

#include <nlohmann/json.hpp>

namespace vespra::machineProtocol {

namespace {

    std::string text(const JSON& json) { return json.dump(-1, ' ', false, JSON::error_handler_t::replace); }

    JSON object(const MachineSettings& settings)
    {
        auto json = JSON::object();
        for (const auto& [key, value] : settings)
            json[key] = value;
        return json;
    }

    std::expected<MachineSettings, std::string> parsed(std::string_view request)
    {
        const auto json = JSON::parse(request, nullptr, false);
        if (!json.is_object() || !json.contains("set") || !json["set"].is_object())
            return std::unexpected{"a request is {\"set\":{...}}"};
        MachineSettings settings;
        for (const auto& [key, value] : json["set"].items()) {
            if (!value.is_string())
                return std::unexpected{"the value of \"" + key + "\" is not a text"};
            settings.emplace_back(key, value.get<std::string>());
        }
        return settings;
    }

    JSON shown(const SimulatedMachine& machine)
    {
        auto all = JSON::array();
        for (const auto& [identifier, title, body, actions] : machine.notifications()) {
            auto buttons = JSON::array();
            for (const auto& action : actions)
                buttons.push_back({{"identifier", action.identifier}, {"title", action.title}});
            all.push_back(
                {{"identifier", identifier}, {"title", title}, {"body", body}, {"actions", std::move(buttons)}});
        }
        return all;
    }

} // namespace

std::string request(const MachineSettings& settings) { return text({{"set", object(settings)}}); }

std::string answer(SimulatedMachine& machine, std::string_view request)
{
    const auto settings = parsed(request);
    const auto set = settings ? machine.set(*settings) : std::unexpected{settings.error()};
    if (!set)
        return text({{"error", set.error()}});
    auto held = JSON::array();
    for (const auto& [id, assertion] : machine.assertions())
        held.push_back({{"type", assertion.type}, {"name", assertion.name}});
    return text({{"machine", object(machine.get())},
        {"held", held},
        {"notifications", shown(machine)},
        {"alarms", machine.alarms()}});
}

std::string defaultPath() { return Brand::applicationSupportDirectory() + "/machine.sock"; }

} // namespace vespra::machineProtocol
