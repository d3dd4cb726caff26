#include "Core/Session/SessionSettings.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    JSON toJSON(const EnergyPolicy& energy)
    {
        JSON json{
            {"requiresACPower", energy.requiresACPower},
            {"stopsOnLowBattery", energy.stopsOnLowBattery},
            {"lowBatteryThreshold", energy.lowBatteryThreshold},
        };
        if (energy.batteryTimeLimit)
            json["batteryTimeLimit"] = numberJSON(*energy.batteryTimeLimit);
        return json;
    }

    EnergyPolicy readEnergyPolicy(const JSONSource& source)
    {
        EnergyPolicy energy{
            .requiresACPower = source.required("requiresACPower").boolean(),
            .stopsOnLowBattery = source.required("stopsOnLowBattery").boolean(),
            .lowBatteryThreshold = source.required("lowBatteryThreshold").integer(),
            .batteryTimeLimit = {},
        };
        if (const auto limit = source.optional("batteryTimeLimit"))
            energy.batteryTimeLimit = Seconds{limit->number()};
        return energy;
    }

    ClosedLidPolicy readClosedLidPolicy(const JSONSource& source)
    {
        return {.continuesOnBattery = source.required("continuesOnBattery").boolean()};
    }

    AgentPolicy readAgentPolicy(const JSONSource& source)
    {
        return {
            .graceDelay = Seconds{source.required("graceDelay").number()},
            .waitingCountsAsFinished = source.required("waitingCountsAsFinished").boolean(),
            .endAction = source.required("endAction").rawValue<AgentEndAction>(),
        };
    }

    /// What stands under `key`, or the default when that is missing or malformed.
    template <class Policy>
    Policy readLeniently(const JSONSource& source, std::string_view key, Policy (*read)(const JSONSource&))
    {
        const auto stored = source.optional(key);
        return stored ? decoded(*stored, read).value_or(Policy{}) : Policy{};
    }

} // namespace

JSON toJSON(const SessionSettings& settings)
{
    JSON json{
        {"energy", toJSON(settings.energy)},
        {"closedLid", {{"continuesOnBattery", settings.closedLid.continuesOnBattery}}},
    };
    if (settings.agentSafetyCap)
        json["agentSafetyCap"] = numberJSON(*settings.agentSafetyCap);
    json["agents"] = {
        {"graceDelay", numberJSON(settings.agents.graceDelay)},
        {"waitingCountsAsFinished", settings.agents.waitingCountsAsFinished},
        {"endAction", rawValue(settings.agents.endAction)},
    };
    return json;
}

SessionSettings readSessionSettings(const JSONSource& source)
{
    source.requireObject();
    SessionSettings settings{
        .energy = readLeniently(source, "energy", readEnergyPolicy),
        .closedLid = readLeniently(source, "closedLid", readClosedLidPolicy),
        .agents = readLeniently(source, "agents", readAgentPolicy),
    };
    if (const auto cap = source.optional("agentSafetyCap"))
        settings.agentSafetyCap = Seconds{cap->number()};
    else if (source.has("agentSafetyCap"))
        settings.agentSafetyCap.reset();
    return settings;
}

} // namespace vespra
