#include "Core/Updates/UpdateMessage.h"

#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    using namespace updateMessage;

    JSON json(const UpdateMessage& message)
    {
        return match(
            message,
            [](const UpToDate&) { return JSON{{"type", "upToDate"}}; },
            [](const UpdateOffer& offer) {
                return JSON{{"type", "offer"},
                    {"version", offer.version},
                    {"displayVersion", offer.displayVersion},
                    {"notes", offer.notes},
                    {"url", offer.url},
                    {"signature", offer.signature},
                    {"length", offer.length}};
            },
            [](const Progress& progress) { return JSON{{"type", "progress"}, {"fraction", progress.fraction}}; },
            [](const Package& package) { return JSON{{"type", "package"}, {"path", package.path}}; },
            [](const Failed& failed) {
                return JSON{{"type", "failed"}, {"reason", rawValue(failed.reason)}, {"detail", failed.detail}};
            });
    }

    UpdateMessage read(const JSONSource& source)
    {
        const auto text = [&](const char* key) { return source.required(key).string(); };
        const auto type = text("type");
        if (type == "upToDate")
            return UpToDate{};
        if (type == "progress")
            return Progress{source.required("fraction").number()};
        if (type == "package")
            return Package{text("path")};
        if (type == "failed")
            return Failed{source.required("reason").rawValue<UpdateFailure>(), text("detail")};
        if (type != "offer")
            source.fail("expected another type");
        return UpdateOffer{.version = text("version"),
            .displayVersion = text("displayVersion"),
            .notes = text("notes"),
            .url = text("url"),
            .signature = text("signature"),
            .length = source.required("length").integer()};
    }

} // namespace

std::string encoded(const UpdateMessage& message)
{
    return json(message).dump(-1, ' ', false, JSON::error_handler_t::replace);
}

std::optional<UpdateMessage> updateMessageFrom(std::string_view line)
{
    const auto parsed = parsedJSON(line);
    if (!parsed)
        return {};
    const auto message = decoded(JSONSource{*parsed}, read);
    return message ? std::optional{*message} : std::nullopt;
}

} // namespace vespra
