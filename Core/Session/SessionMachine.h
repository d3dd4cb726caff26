#pragma once

// Core/Session: plans, settings, the rules of a session (SessionMachine) and its live owner (SessionCoordinator).

#include "Core/ClosedLid/ClosedLidStatus.h"
#include "Core/Session/ActiveGuardrail.h"
#include "Core/Session/PowerRequirements.h"
#include "Core/Session/SessionEvent.h"
#include "Core/Session/SessionSettings.h"

#include <expected>

namespace vespra {

/// The rules of a session. Reads no clock and no system: conditions and dates come in, events come out in order.
/// Operations that do not apply to the current state do nothing and return no events.
class SessionMachine {
public:
    SessionMachine(SessionSettings settings, Calendar calendar)
        : settings_{settings}
        , calendar_{calendar}
    {
    }

    const SessionState& state() const { return state_; }
    const SessionSettings& settings() const { return settings_; }
    void setSettings(const SessionSettings& settings) { settings_ = settings; }

    /// Why a start with `options` would be refused now; absent when it would not.
    std::optional<StartRefusal> refusal(const SessionOptions& options, const SessionConditions& conditions) const;

    /// Starts `plan`, or says why not and changes nothing.
    std::expected<SessionEvents, StartRefusal> start(
        const SessionPlan& plan, const SessionOptions& options, const SessionConditions& conditions, Instant now);
    SessionEvents stop(const EndReason& reason, Instant now);

    bool canExtend(Instant now) const { return extendedEnd(now).has_value(); }
    /// Moves the end by 15 minutes, at most to 24 hours from `now`.
    SessionEvents extend(Instant now);

    void setKeepsDisplayAwake(bool value);
    /// Enabling can be refused, which changes nothing; disabling cannot.
    std::expected<SessionEvents, StartRefusal> setClosedLid(
        bool enabled, const SessionConditions& conditions, Instant now);

    /// Applies every rule; to be run on each new reading and at `nextDeadline`.
    SessionEvents update(const SessionConditions& conditions, Instant now);
    /// The next date at which time alone can change something, possibly in the past; absent when none can.
    std::optional<Instant> nextDeadline() const;

    PowerRequirements requirements(const SessionConditions& conditions) const;
    std::vector<ActiveGuardrail> activeGuardrails(const SessionConditions& conditions) const;
    /// `requested` is the user's wish while no session runs.
    ClosedLidStatus closedLidStatus(bool requested, const SessionConditions& conditions) const;
    ClosedLidChecklist closedLidChecklist(const SessionConditions& conditions) const;

    bool operator==(const SessionMachine&) const = default;

private:
    std::optional<Instant> extendedEnd(Instant now) const;
    std::optional<EndReason> endReason(
        const ActiveSession& session, const SessionConditions& conditions, Instant now) const;

    SessionState state_;
    SessionSettings settings_;
    Calendar calendar_;
};

} // namespace vespra
