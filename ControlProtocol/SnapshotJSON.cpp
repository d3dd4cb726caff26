#include "ControlProtocol/SnapshotJSON.h"

#include "Core/Coding/DisplayText.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>

namespace vespra {

namespace {

    JSON name(const auto& variant) { return std::string{caseName(variant)}; }

    JSON optionalDate(const std::optional<Instant>& instant, const DateWriter& date)
    {
        return instant ? date(*instant) : JSON{};
    }

    JSON blockerJSON(const ClosedLidBlocker& blocker)
    {
        if (const auto* low = std::get_if<blocker::BatteryTooLow>(&blocker))
            return {{low->name, low->level}};
        return name(blocker);
    }

    JSON closedLidStatusJSON(const ClosedLidStatus& status)
    {
        if (const auto* unsupported = std::get_if<closedLid::Unsupported>(&status))
            return {{unsupported->name, rawValue(unsupported->reason)}};
        if (const auto* blocked = std::get_if<closedLid::Blocked>(&status))
            return {{blocked->name, blockerJSON(blocked->blocker)}};
        return name(status);
    }

    JSON checklistJSON(const ClosedLidChecklist& checklist)
    {
        return {
            {"helper", rawValue(checklist.helper)},
            {"power", rawValue(checklist.power)},
            {"thermal", rawValue(checklist.thermal)},
            {"session", rawValue(checklist.session)},
        };
    }

    JSON requirementsJSON(const PowerRequirements& requirements)
    {
        return {
            {"preventsIdleSystemSleep", requirements.preventsIdleSystemSleep},
            {"preventsDisplaySleep", requirements.preventsDisplaySleep},
            {"disablesSystemSleep", requirements.disablesSystemSleep},
            {"turnsDisplayOff", requirements.turnsDisplayOff},
        };
    }

    JSON guardrailJSON(const ActiveGuardrail& guardrail)
    {
        return match(
            guardrail,
            [](const guardrail::LowBattery& low) { return JSON{{low.name, low.threshold}}; },
            [](const guardrail::BatteryTimeLimit& time) { return JSON{{time.name, roundedJSON(time.limit)}}; },
            [](const guardrail::ClosedLidLimit& lid) { return JSON{{lid.name, roundedJSON(lid.limit)}}; },
            [](const guardrail::ChargerRequired& charger) { return JSON(charger.name); });
    }

    JSON guardrailsJSON(const std::vector<ActiveGuardrail>& guardrails)
    {
        auto list = JSON::array();
        for (const auto& guardrail : guardrails)
            list.push_back(guardrailJSON(guardrail));
        return list;
    }

    JSON phaseJSON(const AgentEndCondition* condition, const DateWriter& date)
    {
        if (!condition)
            return {};
        const auto phase = condition->phase();
        if (const auto* finishing = std::get_if<phase::Finishing>(&phase))
            return {{finishing->name, date(finishing->endsAt)}};
        return name(phase);
    }

    JSON agentsJSON(const AgentTracker& tracker)
    {
        auto list = JSON::array();
        for (const auto& session : tracker.sessions())
            list.push_back({
                {"id", session.id},
                {"cwd", session.cwd ? JSON(*session.cwd) : JSON{}},
                {"activity", rawValue(session.activity)},
            });
        return list;
    }

    JSON lastEndJSON(const std::optional<SessionEnd>& end, const DateWriter& date)
    {
        if (!end)
            return {};
        auto json = endReasonJSON(end->reason);
        json["at"] = date(end->date);
        return json;
    }

    void addSession(JSON& json, const SessionCoordinator& coordinator, const DateWriter& date)
    {
        const auto* session = coordinator.state().activeSession();
        const auto now = coordinator.now();
        const auto remaining = session ? session->remaining(now) : std::nullopt;
        json["state"] = session ? "active" : "idle";
        json["mode"] = session ? JSON(rawValue(session->mode())) : JSON{};
        json["endsAt"] = session ? optionalDate(session->endsAt, date) : JSON{};
        json["remaining"] = remaining ? roundedJSON(*remaining) : JSON{};
        json["elapsed"] = session ? roundedJSON(session->elapsed(now)) : JSON{};
        json["lastEnd"] = lastEndJSON(coordinator.state().lastEnd(), date);
    }

} // namespace

JSON roundedJSON(Seconds length)
{
    constexpr double millionths = 1e6;
    return numberJSON(std::round(length.count() * millionths) / millionths);
}

namespace {

    // The JSON library's own digits are not always the shortest.
    void appendNumber(std::string& text, double number)
    {
        constexpr double smallestWithoutExponent = 1e-4;
        const auto format
            = std::abs(number) < smallestWithoutExponent ? std::chars_format::scientific : std::chars_format::fixed;
        char digits[400];
        text.append(digits, std::to_chars(digits, digits + sizeof digits, number, format).ptr);
    }

    void append(std::string& text, const JSON& json)
    {
        if (json.is_number_float())
            return appendNumber(text, json.get<double>());
        if (!json.is_structured()) {
            // Control characters, which a terminal would obey, are written as escapes.
            const auto* string = json.get_ptr<const std::string*>();
            text += json.dump(-1, ' ', /*ensure_ascii=*/string && displayText(*string) != *string);
            return;
        }
        text += json.is_object() ? '{' : '[';
        const char* separator = "";
        for (const auto& [key, value] : json.items()) {
            text += std::exchange(separator, ",");
            if (json.is_object())
                text += JSON(key).dump() + ':';
            append(text, value);
        }
        text += json.is_object() ? '}' : ']';
    }

} // namespace

std::string dumped(const JSON& json)
{
    std::string text;
    append(text, json);
    return text;
}

JSON endReasonJSON(const EndReason& reason)
{
    JSON json{{"reason", caseName(reason)}};
    if (const auto* low = std::get_if<end::LowBattery>(&reason))
        json["level"] = low->level;
    return json;
}

JSON refusalJSON(const StartRefusal& refusal)
{
    JSON json{{"refused", caseName(refusal)}};
    if (const auto* low = std::get_if<refusal::BatteryTooLow>(&refusal))
        json["level"] = low->level;
    return json;
}

JSON helperStatusJSON(const HelperStatus& status)
{
    if (const auto* unsupported = std::get_if<helper::Unsupported>(&status))
        return rawValue(unsupported->reason);
    return name(status);
}

JSON sessionEventJSON(const SessionEvent& event, const DateWriter& date)
{
    JSON payload = match(
        event,
        [&](const event::Started& started) {
            JSON json{{"mode", rawValue(started.session.mode())}};
            if (started.session.endsAt)
                json["endsAt"] = date(*started.session.endsAt);
            return json;
        },
        [&](const event::Extended& extended) { return JSON{{"endsAt", date(extended.endsAt)}}; },
        [&](const event::EndingSoon& soon) { return JSON{{"endsAt", date(soon.endsAt)}}; },
        [](const event::Ended& ended) { return endReasonJSON(ended.end.reason); },
        [](const event::OverheatingWarning&) { return JSON::object(); });
    return {{caseName(event), std::move(payload)}};
}

JSON snapshotJSON(const SessionCoordinator& coordinator, const SnapshotContext& context, const DateWriter& date)
{
    const auto& lastFinished = context.tracker.lastFinished();
    JSON json;
    addSession(json, coordinator, date);
    json["deadline"] = optionalDate(context.deadline, date);
    json["canExtend"] = coordinator.canExtend();
    json["requirements"] = requirementsJSON(coordinator.requirements());
    json["guardrails"] = guardrailsJSON(coordinator.activeGuardrails());
    json["closedLidStatus"] = closedLidStatusJSON(coordinator.closedLidStatus(context.closedLidRequested));
    json["checklist"] = checklistJSON(coordinator.closedLidChecklist());
    json["phase"] = phaseJSON(context.condition, date);
    json["agents"] = agentsJSON(context.tracker);
    json["lastFinished"] = lastFinished ? JSON(lastFinished->id) : JSON{};
    return json;
}

} // namespace vespra
