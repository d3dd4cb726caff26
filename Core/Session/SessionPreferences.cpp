#include "Core/Session/SessionPreferences.h"

#include "Core/Session/SessionLimits.h"

#include <nlohmann/json.hpp>

namespace vespra {

SessionPlan SessionPreferences::plan(std::optional<Seconds> agentSafetyCap) const
{
    switch (mode) {
    case SessionMode::timer:
        return plan::Timer{SessionLimits::clampedDuration(timerDuration)};
    case SessionMode::until:
        return plan::Until{untilTime};
    case SessionMode::unlimited:
        return plan::Unlimited{};
    case SessionMode::agent:
        break;
    }
    return plan::Agent{agentSafetyCap};
}

JSON toJSON(const SessionOptions& options)
{
    return {{"keepsDisplayAwake", options.keepsDisplayAwake}, {"closedLid", options.closedLid}};
}

SessionOptions readSessionOptions(const JSONSource& source)
{
    return {
        .keepsDisplayAwake = source.required("keepsDisplayAwake").boolean(),
        .closedLid = source.required("closedLid").boolean(),
    };
}

JSON toJSON(const SessionPreferences& preferences)
{
    return {
        {"mode", rawValue(preferences.mode)},
        {"timerDuration", numberJSON(preferences.timerDuration)},
        {"untilTime", toJSON(preferences.untilTime)},
        {"options", toJSON(preferences.options)},
    };
}

std::expected<SessionPreferences, DecodingError> sessionPreferences(const JSON& json)
{
    return decoded(JSONSource{json}, [](const JSONSource& source) {
        return SessionPreferences{
            .mode = source.required("mode").rawValue<SessionMode>(),
            .timerDuration = Seconds{source.required("timerDuration").number()},
            .untilTime = readTimeOfDay(source.required("untilTime")),
            .options = readSessionOptions(source.required("options")),
        };
    });
}

} // namespace vespra
