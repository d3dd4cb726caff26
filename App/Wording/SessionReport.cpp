#include "App/Wording/SessionReport.h"

#include "App/Wording/AgentWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "Core/Session/CountdownFormat.h"

namespace vespra {

namespace {

    constexpr const char* separator = " · ";

    std::string clockText(const ActiveSession& session, Instant now)
    {
        const auto remaining = session.remaining(now);
        if (remaining && session.mode() != SessionMode::agent)
            return localized("%1 left", {CountdownFormat::remaining(*remaining)});
        return localized("%1 awake", {CountdownFormat::elapsed(session.elapsed(now))});
    }

    std::string phaseText(const AgentEndCondition::Phase& phase, Instant now)
    {
        return match(
            phase,
            [](const phase::KeptAwake&) { return localized("kept awake"); },
            [&](const phase::Finishing& finishing) {
                const auto left = CountdownFormat::remaining(finishing.endsAt - now);
                return localized("agents are done, ends in %1", {left});
            },
            [](const phase::Working&) { return localized("agents are working"); },
            [](const phase::WaitingForAgents&) { return localized("waiting for agents"); });
    }

} // namespace

std::string startLine(const ActiveSession& session)
{
    if (session.mode() == SessionMode::agent)
        return session.endsAt
            ? localized("Awake until your agents have finished, until %1 at the latest.", {timeText(*session.endsAt)})
            : localized("Awake until your agents have finished.");
    return session.endsAt ? localized("Awake until %1.", {timeText(*session.endsAt)})
                          : localized("Awake until you stop it.");
}

std::string reportLine(const SessionEvent& event)
{
    return match(
        event,
        [](const event::Started& started) { return startLine(started.session); },
        [](const event::Extended& extended) { return localized("Awake until %1.", {timeText(extended.endsAt)}); },
        [](const event::EndingSoon& soon) {
            return localized("5 minutes left") + ". " + localized("The session ends at %1.", {timeText(soon.endsAt)});
        },
        [](const event::Ended& ended) { return notificationTitle(ended.end.reason); },
        [](const event::OverheatingWarning&) {
            return localized("Your Mac is running hot") + ". "
                + localized("The session continues. Make sure it has room to breathe.");
        });
}

std::string standingLine(const ActiveSession& session, Instant now, const AgentEndCondition* condition)
{
    const auto line = clockText(session, now);
    return condition ? line + separator + phaseText(condition->phase(), now) : line;
}

std::string liveLine(
    const ActiveSession& session, Instant now, const AgentEndCondition* condition, const AgentTracker& tracker)
{
    auto line = standingLine(session, now, condition);
    for (const auto& agent : tracker.sessions())
        line += separator + statusLine(agent);
    return line;
}

} // namespace vespra
