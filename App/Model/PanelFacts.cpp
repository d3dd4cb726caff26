#include "App/Model/PanelFacts.h"

#include "App/Wording/AgentWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "Core/Session/CountdownFormat.h"
#include "Core/Session/DurationSteps.h"

#include <algorithm>

namespace vespra::panelFacts {

namespace {

    /// A length as it is read aloud: a minute that has begun counts.
    std::string spokenLength(Seconds length)
    {
        return Format::current().spokenDuration(std::chrono::ceil<std::chrono::minutes>(std::max(length, Seconds{})));
    }

    ModeSetting durationSetting(const SessionPreferences& preferences)
    {
        const auto withDuration = [&](std::optional<Seconds> duration) {
            return duration ? std::optional{[&, next = preferences]() mutable {
                next.timerDuration = *duration;
                return next;
            }()}
                            : std::nullopt;
        };
        const auto duration = preferences.timerDuration;
        return {
            .label = localized("Duration"),
            .value = Format::current().briefDuration(duration),
            .spokenValue = spokenLength(duration),
            .detail = {},
            .decrement = withDuration(DurationSteps::previous(duration)),
            .increment = withDuration(DurationSteps::next(duration)),
        };
    }

    ModeSetting untilSetting(const SessionPreferences& preferences, Instant now)
    {
        const auto stepped = [&](bool forward) {
            auto next = preferences;
            next.untilTime = preferences.untilTime.stepped(forward);
            return next;
        };
        const auto time = Format::current().time(preferences.untilTime, Calendar::current(), now);
        return {
            .label = localized("Ends at"),
            .value = time,
            .spokenValue = time,
            .detail = {},
            .decrement = stepped(false),
            .increment = stepped(true),
        };
    }

    SessionClock countdown(const ActiveSession& session, Instant now)
    {
        constexpr Seconds shortest = 1s;
        const auto left = *session.endsAt - now;
        const auto total = std::max(*session.endsAt - session.startedAt, shortest);
        return {
            .clock = CountdownFormat::remaining(left),
            .subtitle = localized("Until %1", {timeText(*session.endsAt)}),
            .spoken = localized("Session active, %1 left", {spokenLength(left)}),
            .remainingFraction = std::clamp(left / total, 0.0, 1.0),
        };
    }

    SessionClock stopwatch(const ActiveSession& session, Instant now)
    {
        const auto since = timeText(session.startedAt);
        return {
            .clock = CountdownFormat::elapsed(now - session.startedAt),
            .subtitle = session.mode() == SessionMode::agent ? localized("Agent · since %1", {since})
                                                             : localized("Unlimited · since %1", {since}),
            .spoken = localized("Session active since %1", {since}),
            .remainingFraction = {},
        };
    }

} // namespace

std::string_view symbol(const StartRefusal& refusal)
{
    return match(
        refusal,
        [](const refusal::BatteryTooLow&) { return "battery.25percent"; },
        [](const refusal::AlreadyActive&) { return "clock"; },
        [](const refusal::ChargerRequired&) { return "powerplug"; },
        [](const refusal::TooHot&) { return "thermometer.high"; });
}

std::optional<StartBlocker> startBlocker(const AppModel& model)
{
    const auto refusal = model.coordinator().refusal(model.preferences().options);
    return refusal ? std::optional{StartBlocker{symbol(*refusal), message(*refusal)}} : std::nullopt;
}

std::optional<std::string> guardrailSummary(const AppModel& model)
{
    std::optional<std::string> summary;
    for (const auto& guardrail : model.coordinator().activeGuardrails())
        summary = (summary ? *summary + " · " : "") + shortDescription(guardrail);
    return summary;
}

std::optional<SessionEnd> visibleGuardrailEnd(const AppModel& model)
{
    const auto end = model.coordinator().state().lastEnd();
    return end && traits(end->reason).isGuardrail && end != model.dismissedEnd() ? end : std::nullopt;
}

std::string agentsFinishedTitle(const AppModel& model)
{
    const auto& session = model.agents().lastFinished();
    if (!session)
        return localized("Your agents are done");
    const std::string agent{displayName(session->agent)};
    if (const auto folder = session->folderName())
        return localized("%1 finished in %2", {agent, *folder});
    return localized("%1 is done", {agent});
}

std::optional<ModeSetting> modeSetting(const AppModel& model)
{
    switch (const auto& preferences = model.preferences(); preferences.mode) {
    case SessionMode::timer:
        return durationSetting(preferences);
    case SessionMode::until:
        return untilSetting(preferences, model.coordinator().now());
    case SessionMode::unlimited:
    case SessionMode::agent:
        break;
    }
    return {};
}

bool countsDown(const ActiveSession& session) { return session.endsAt && session.mode() != SessionMode::agent; }

SessionClock sessionClock(const ActiveSession& session, Instant now)
{
    return countsDown(session) ? countdown(session, now) : stopwatch(session, now);
}

Instant clockAnchor(const ActiveSession& session) { return countsDown(session) ? *session.endsAt : session.startedAt; }

std::optional<std::string> remainingTimeTitle(const AppModel& model)
{
    const auto* session = model.coordinator().state().activeSession();
    if (!model.showsRemainingTimeInMenuBar() || !session || !countsDown(*session))
        return {};
    return " " + CountdownFormat::remaining(*session->endsAt - model.clock().now(*session->endsAt));
}

} // namespace vespra::panelFacts
