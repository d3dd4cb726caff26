#include "Core/Session/SessionPlan.h"

#include "Core/Session/SessionLimits.h"

#include <nlohmann/json.hpp>

namespace vespra {

SessionMode mode(const SessionPlan& plan)
{
    return match(
        plan,
        [](const plan::Timer&) { return SessionMode::timer; },
        [](const plan::Until&) { return SessionMode::until; },
        [](const plan::Unlimited&) { return SessionMode::unlimited; },
        [](const plan::Agent&) { return SessionMode::agent; });
}

bool isExtendable(const SessionPlan& plan)
{
    const auto planned = mode(plan);
    return planned == SessionMode::timer || planned == SessionMode::until;
}

std::optional<Instant> plannedEnd(const SessionPlan& plan, Instant start, const Calendar& calendar)
{
    using End = std::optional<Instant>;
    return match(
        plan,
        [&](const plan::Timer& timer) -> End { return start + SessionLimits::clampedDuration(timer.duration); },
        [&](const plan::Until& until) -> End { return until.time.nextOccurrence(start, calendar); },
        [](const plan::Unlimited&) -> End { return {}; },
        [&](const plan::Agent& agent) -> End {
            if (!agent.safetyCap)
                return {};
            return start + SessionLimits::clampedDuration(*agent.safetyCap);
        });
}

JSON toJSON(TimeOfDay time) { return {{"hour", time.hour()}, {"minute", time.minute()}}; }

JSON toJSON(const SessionPlan& plan)
{
    JSON payload = match(
        plan,
        [](const plan::Timer& timer) { return JSON{{"duration", numberJSON(timer.duration)}}; },
        [](const plan::Until& until) { return JSON{{"_0", toJSON(until.time)}}; },
        [](const plan::Unlimited&) { return JSON::object(); },
        [](const plan::Agent& agent) {
            return agent.safetyCap ? JSON{{"safetyCap", numberJSON(*agent.safetyCap)}} : JSON::object();
        });
    return {{std::string{caseName(plan)}, std::move(payload)}};
}

TimeOfDay readTimeOfDay(const JSONSource& source)
{
    return {source.required("hour").integer(), source.required("minute").integer()};
}

namespace {

    SessionMode soleCase(const JSONSource& source)
    {
        source.requireObject();
        std::optional<SessionMode> only;
        int count = 0;
        for (const auto& [mode, raw] : rawValues<SessionMode>)
            if (source.has(raw)) {
                only = mode;
                ++count;
            }
        if (count != 1)
            source.fail("Invalid number of keys found, expected one.");
        return *only;
    }

} // namespace

SessionPlan readSessionPlan(const JSONSource& source)
{
    const auto mode = soleCase(source);
    const auto payload = source.required(rawValue(mode));
    payload.requireObject();
    switch (mode) {
    case SessionMode::timer:
        return plan::Timer{Seconds{payload.required("duration").number()}};
    case SessionMode::until:
        return plan::Until{readTimeOfDay(payload.required("_0"))};
    case SessionMode::unlimited:
        return plan::Unlimited{};
    case SessionMode::agent:
        break;
    }
    const auto cap = payload.optional("safetyCap");
    return plan::Agent{cap ? std::optional{Seconds{cap->number()}} : std::nullopt};
}

} // namespace vespra
