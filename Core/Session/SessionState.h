#pragma once

#include "Core/Energy/SessionConditions.h"
#include "Core/Session/EndReason.h"
#include "Core/Session/SessionOptions.h"
#include "Core/Session/SessionPlan.h"

namespace vespra {

/// A running session.
struct ActiveSession {
    SessionPlan plan; // fixed
    Instant startedAt; // fixed
    /// The planned end, which extensions move; absent: none.
    std::optional<Instant> endsAt;
    SessionOptions options;
    /// When the current uninterrupted stretch on battery began.
    std::optional<Instant> onBatterySince;
    /// When the current uninterrupted stretch of engaged closed-lid mode began.
    std::optional<Instant> closedLidEngagedSince;
    /// The ending-soon warning is still to be sent.
    bool endingSoonPending = false;
    /// The overheating warning may be sent.
    bool heatWarningArmed = true;

    SessionMode mode() const { return vespra::mode(plan); }
    /// Never negative; absent without an end.
    std::optional<Seconds> remaining(Instant at) const;
    /// Never negative.
    Seconds elapsed(Instant at) const;

    /// Sets the end and whether a warning is due before it, seen from `now`.
    void planEnd(std::optional<Instant> end, Instant now);
    /// Keeps the two stretches up to date.
    void track(const SessionConditions& conditions, bool closedLidEngaged, Instant now);

    bool operator==(const ActiveSession&) const = default;
};

/// How and when a session ended.
struct SessionEnd {
    EndReason reason;
    Instant date;
    bool operator==(const SessionEnd&) const = default;
};

/// Absent before the first session.
struct IdleState {
    std::optional<SessionEnd> lastEnd;
    bool operator==(const IdleState&) const = default;
};

/// Idle, or a running session.
class SessionState : public std::variant<IdleState, ActiveSession> {
public:
    using variant::variant;

    const variant& cases() const { return *this; }
    bool isActive() const { return std::holds_alternative<ActiveSession>(*this); }
    /// Nothing when idle.
    const ActiveSession* activeSession() const { return std::get_if<ActiveSession>(this); }
    ActiveSession* activeSession() { return std::get_if<ActiveSession>(this); }
    /// Absent while active, and before the first end.
    std::optional<SessionEnd> lastEnd() const;
};

} // namespace vespra
