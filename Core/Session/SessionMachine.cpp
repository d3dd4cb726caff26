#include "Core/Session/SessionMachine.h"

#include "Core/Session/Guardrails.h"
#include "Core/Session/SessionLimits.h"

#include <algorithm>

namespace vespra {

namespace {

    bool wouldEngage(bool closedLid, const SessionConditions& conditions)
    {
        return closedLid && isReady(conditions.helper);
    }

    bool isEngaged(const ActiveSession& session, const SessionConditions& conditions)
    {
        return wouldEngage(session.options.closedLid, conditions);
    }

    StartRefusal asRefusal(const Violation& violation)
    {
        return match(violation, [](const auto& reason) -> StartRefusal { return reason; });
    }

    EndReason asEndReason(const Violation& violation)
    {
        return match(
            violation,
            [](blocker::BatteryTooLow low) -> EndReason { return end::LowBattery{low.level}; },
            [](blocker::ChargerRequired) -> EndReason { return end::ChargerDisconnected{}; },
            [](blocker::TooHot) -> EndReason { return end::Overheating{}; });
    }

    bool hasPassed(std::optional<Instant> since, std::optional<Seconds> limit, Instant now)
    {
        return since && limit && now >= *since + *limit;
    }

    /// Once per hot spell, armed again when the machine has cooled down entirely.
    bool takeHeatWarning(ActiveSession& session, ThermalLevel thermal)
    {
        if (thermal == ThermalLevel::nominal)
            session.heatWarningArmed = true;
        return isHot(thermal) && std::exchange(session.heatWarningArmed, false);
    }

    bool takeEndingSoon(ActiveSession& session, Instant now)
    {
        if (!session.endingSoonPending || !session.endsAt || now < *session.endsAt - SessionLimits::endingSoonLead)
            return false;
        session.endingSoonPending = false;
        return true;
    }

} // namespace

std::optional<StartRefusal> SessionMachine::refusal(
    const SessionOptions& options, const SessionConditions& conditions) const
{
    if (state_.isActive())
        return refusal::AlreadyActive{};
    if (const auto found = violation(wouldEngage(options.closedLid, conditions), conditions, settings_))
        return asRefusal(*found);
    return {};
}

std::expected<SessionEvents, StartRefusal> SessionMachine::start(
    const SessionPlan& plan, const SessionOptions& options, const SessionConditions& conditions, Instant now)
{
    if (const auto refused = refusal(options, conditions))
        return std::unexpected{*refused};

    ActiveSession session{.plan = plan,
        .startedAt = now,
        .endsAt = {},
        .options = options,
        .onBatterySince = {},
        .closedLidEngagedSince = {}};
    session.planEnd(plannedEnd(plan, now, calendar_), now);
    session.track(conditions, isEngaged(session, conditions), now);
    state_ = session;
    return SessionEvents{event::Started{session}};
}

SessionEvents SessionMachine::stop(const EndReason& reason, Instant now)
{
    if (!state_.isActive())
        return {};
    const SessionEnd end{reason, now};
    state_ = IdleState{end};
    return {event::Ended{end}};
}

std::optional<Instant> SessionMachine::extendedEnd(Instant now) const
{
    const auto* session = state_.activeSession();
    if (!session || !isExtendable(session->plan) || !session->endsAt)
        return {};
    const auto candidate
        = std::min(*session->endsAt + SessionLimits::extensionStep, now + SessionLimits::maximumDuration);
    return candidate > *session->endsAt ? std::optional{candidate} : std::nullopt;
}

SessionEvents SessionMachine::extend(Instant now)
{
    const auto end = extendedEnd(now);
    if (!end)
        return {};
    state_.activeSession()->planEnd(end, now);
    return {event::Extended{*end}};
}

void SessionMachine::setKeepsDisplayAwake(bool value)
{
    if (auto* session = state_.activeSession())
        session->options.keepsDisplayAwake = value;
}

std::expected<SessionEvents, StartRefusal> SessionMachine::setClosedLid(
    bool enabled, const SessionConditions& conditions, Instant now)
{
    auto* session = state_.activeSession();
    if (!session)
        return SessionEvents{};
    if (enabled)
        if (const auto found = violation(isReady(conditions.helper), conditions, settings_))
            return std::unexpected{asRefusal(*found)};
    session->options.closedLid = enabled;
    return update(conditions, now);
}

std::optional<EndReason> SessionMachine::endReason(
    const ActiveSession& session, const SessionConditions& conditions, Instant now) const
{
    if (const auto found = violation(isEngaged(session, conditions), conditions, settings_))
        return asEndReason(*found);
    if (hasPassed(session.onBatterySince, settings_.energy.batteryTimeLimit, now))
        return end::BatteryTimeLimit{};
    if (hasPassed(session.closedLidEngagedSince, ClosedLidPolicy::maximumContinuousDuration, now))
        return end::ClosedLidTimeLimit{};
    if (session.endsAt && now >= *session.endsAt)
        return session.mode() == SessionMode::agent ? EndReason{end::SafetyCapReached{}} : end::TimeElapsed{};
    return {};
}

SessionEvents SessionMachine::update(const SessionConditions& conditions, Instant now)
{
    auto* session = state_.activeSession();
    if (!session)
        return {};

    session->track(conditions, isEngaged(*session, conditions), now);
    if (const auto reason = endReason(*session, conditions, now))
        return stop(*reason, now);

    SessionEvents events;
    if (takeHeatWarning(*session, conditions.thermal))
        events.emplace_back(event::OverheatingWarning{});
    if (takeEndingSoon(*session, now))
        events.emplace_back(event::EndingSoon{*session->endsAt});
    return events;
}

std::optional<Instant> SessionMachine::nextDeadline() const
{
    const auto* session = state_.activeSession();
    if (!session)
        return {};
    std::optional<Instant> earliest;
    const auto consider = [&](std::optional<Instant> from, std::optional<Seconds> after) {
        if (from && after)
            earliest = std::min(earliest.value_or(*from + *after), *from + *after);
    };
    consider(session->endsAt, 0s);
    if (session->endingSoonPending)
        consider(session->endsAt, -SessionLimits::endingSoonLead);
    consider(session->onBatterySince, settings_.energy.batteryTimeLimit);
    consider(session->closedLidEngagedSince, ClosedLidPolicy::maximumContinuousDuration);
    return earliest;
}

PowerRequirements SessionMachine::requirements(const SessionConditions& conditions) const
{
    const auto* session = state_.activeSession();
    if (!session)
        return PowerRequirements::none();
    const bool engaged = isEngaged(*session, conditions);
    const bool displayIsShut = engaged && conditions.lidClosedWithoutExternalDisplay;
    return {
        .preventsIdleSystemSleep = true,
        .preventsDisplaySleep = session->options.keepsDisplayAwake && !displayIsShut,
        .disablesSystemSleep = engaged,
        .turnsDisplayOff = displayIsShut,
    };
}

std::vector<ActiveGuardrail> SessionMachine::activeGuardrails(const SessionConditions& conditions) const
{
    const auto* session = state_.activeSession();
    if (!session)
        return {};
    const bool engaged = isEngaged(*session, conditions);
    const auto& energy = settings_.energy;
    std::vector<ActiveGuardrail> guardrails;
    if (conditions.power.batteryLevel && needsCharger(engaged, settings_)) {
        guardrails.emplace_back(guardrail::ChargerRequired{});
    } else if (conditions.power.batteryLevel) {
        if (energy.stopsOnLowBattery)
            guardrails.emplace_back(guardrail::LowBattery{energy.effectiveLowBatteryThreshold()});
        if (energy.batteryTimeLimit)
            guardrails.emplace_back(guardrail::BatteryTimeLimit{*energy.batteryTimeLimit});
    }
    if (engaged)
        guardrails.emplace_back(guardrail::ClosedLidLimit{ClosedLidPolicy::maximumContinuousDuration});
    return guardrails;
}

ClosedLidStatus SessionMachine::closedLidStatus(bool requested, const SessionConditions& conditions) const
{
    const auto* session = state_.activeSession();
    const auto whenReady = [&]() -> ClosedLidStatus {
        if (!(session ? session->options.closedLid : requested))
            return closedLid::Off{};
        if (const auto found = violation(/*engaged=*/true, conditions, settings_))
            return closedLid::Blocked{*found};
        if (!session)
            return closedLid::Ready{};
        return conditions.lidSleepDisabled ? ClosedLidStatus{closedLid::CanCloseLid{}} : closedLid::Verifying{};
    };
    return match(
        conditions.helper,
        [](const helper::Unsupported& no) -> ClosedLidStatus { return closedLid::Unsupported{no.reason}; },
        [](const helper::NotInstalled&) -> ClosedLidStatus { return closedLid::NotConfigured{}; },
        [](const helper::AwaitingApproval&) -> ClosedLidStatus { return closedLid::AwaitingApproval{}; },
        [](const helper::Failed&) -> ClosedLidStatus { return closedLid::HelperFailed{}; },
        [&](const helper::Ready&) { return whenReady(); });
}

ClosedLidChecklist SessionMachine::closedLidChecklist(const SessionConditions& conditions) const
{
    using Item = ClosedLidChecklist::Item;
    const auto okUnless = [](bool failed) { return failed ? Item::failed : Item::ok; };
    const bool awaiting = std::holds_alternative<helper::AwaitingApproval>(conditions.helper);
    return {
        .helper = isReady(conditions.helper) ? Item::ok
            : awaiting                       ? Item::pending
                                             : Item::failed,
        .power = okUnless(powerViolation(/*engaged=*/true, conditions.power, settings_).has_value()),
        .thermal = okUnless(isHot(conditions.thermal)),
        .session = state_.isActive() && conditions.lidSleepDisabled ? Item::ok : Item::pending,
    };
}

} // namespace vespra
