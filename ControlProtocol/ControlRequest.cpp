#include "ControlProtocol/ControlRequest.h"

#include "ControlProtocol/Arguments.h"
#include "Core/Session/SessionLimits.h"
#include "HelperProtocol/Brand.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

namespace vespra::controlProtocol {

namespace {

    constexpr ClosedRange<Seconds> timerRange{SessionLimits::minimumDuration, SessionLimits::maximumDuration};

    template <class Value> Value parsed(const JSONSource& source, const std::expected<Value, std::string>& value)
    {
        if (!value)
            source.fail(value.error());
        return *value;
    }

    template <class Read> void take(const JSONSource& source, std::string_view key, Read read)
    {
        if (const auto value = source.optional(key))
            read(*value);
    }

    /// What a verb takes besides "request".
    std::vector<std::string_view> keys(ControlVerb verb)
    {
        switch (verb) {
        case ControlVerb::start:
            return {"mode", "timerDuration", "untilTime", "keepsDisplayAwake", "closedLid"};
        case ControlVerb::run:
            return {"keepsDisplayAwake", "closedLid"};
        case ControlVerb::display:
        case ControlVerb::closedLid:
            return {"on"};
        case ControlVerb::set:
            return {"key", "value"};
        default:
            return {};
        }
    }

    void requireKnownKeys(const JSONSource& source, ControlVerb verb)
    {
        const auto known = keys(verb);
        for (const auto& [key, value] : source.value().items())
            if (key != "request" && std::ranges::find(known, key) == known.end())
                source.fail("does not take \"" + key + "\" with \"" + std::string{rawValue(verb)} + "\"");
    }

    StartOptions readStart(const JSONSource& source)
    {
        StartOptions start;
        take(source, "mode", [&](const auto& value) { start.mode = value.template rawValue<SessionMode>(); });
        take(source, "timerDuration", [&](const auto& value) {
            start.timerDuration = parsed(value, arguments::length(value.string(), timerRange));
        });
        take(source, "untilTime", [&](const auto& value) {
            start.untilTime = parsed(value, arguments::timeOfDay(value.string()));
        });
        take(source, "keepsDisplayAwake", [&](const auto& value) { start.keepsDisplayAwake = value.boolean(); });
        take(source, "closedLid", [&](const auto& value) { start.closedLid = value.boolean(); });
        return start;
    }

    ControlRequest read(const JSONSource& source)
    {
        source.requireObject();
        ControlRequest request{.verb = source.required("request").rawValue<ControlVerb>()};
        requireKnownKeys(source, request.verb);
        if (request.verb == ControlVerb::start || request.verb == ControlVerb::run)
            request.start = readStart(source);
        if (request.verb == ControlVerb::display || request.verb == ControlVerb::closedLid)
            request.on = source.required("on").boolean();
        if (request.verb == ControlVerb::set) {
            request.key = source.required("key").string();
            request.value = source.required("value").string();
        }
        return request;
    }

    void writeStart(JSON& json, const StartOptions& start)
    {
        if (start.mode)
            json["mode"] = rawValue(*start.mode);
        if (start.timerDuration)
            json["timerDuration"] = arguments::lengthText(*start.timerDuration);
        if (start.untilTime)
            json["untilTime"] = arguments::timeOfDayText(*start.untilTime);
        if (start.keepsDisplayAwake)
            json["keepsDisplayAwake"] = *start.keepsDisplayAwake;
        if (start.closedLid)
            json["closedLid"] = *start.closedLid;
    }

} // namespace

std::string defaultPath() { return Brand::applicationSupportDirectory() + "/" + std::string{socketName}; }

std::string line(const ControlRequest& request)
{
    JSON json{{"request", rawValue(request.verb)}};
    writeStart(json, request.start);
    if (request.verb == ControlVerb::display || request.verb == ControlVerb::closedLid)
        json["on"] = request.on;
    if (request.verb == ControlVerb::set) {
        json["key"] = request.key;
        json["value"] = request.value;
    }
    return json.dump(-1, ' ', false, JSON::error_handler_t::replace) + "\n";
}

std::expected<ControlRequest, std::string> request(std::string_view line)
{
    const auto json = parsedJSON(line);
    if (!json)
        return std::unexpected{"request: expected a JSON object in one line"};
    const auto request = decoded(JSONSource{*json, "request"}, read);
    if (!request)
        return std::unexpected{request.error().description()};
    return *request;
}

} // namespace vespra::controlProtocol
