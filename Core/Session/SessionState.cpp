#include "Core/Session/SessionState.h"

#include "Core/Session/SessionLimits.h"

#include <algorithm>

namespace vespra {

std::optional<Seconds> ActiveSession::remaining(Instant at) const
{
    if (!endsAt)
        return {};
    return std::max(*endsAt - at, Seconds{});
}

Seconds ActiveSession::elapsed(Instant at) const { return std::max(at - startedAt, Seconds{}); }

void ActiveSession::planEnd(std::optional<Instant> end, Instant now)
{
    endsAt = end;
    endingSoonPending = isExtendable(plan) && end && *end - now > SessionLimits::endingSoonLead;
}

void ActiveSession::track(const SessionConditions& conditions, bool closedLidEngaged, Instant now)
{
    const auto keepStretch = [now](std::optional<Instant>& since, bool goesOn) {
        if (!goesOn)
            since.reset();
        else if (!since)
            since = now;
    };
    keepStretch(onBatterySince, conditions.power.isOnBattery());
    keepStretch(closedLidEngagedSince, closedLidEngaged);
}

std::optional<SessionEnd> SessionState::lastEnd() const
{
    const auto* idle = std::get_if<IdleState>(this);
    return idle ? idle->lastEnd : std::nullopt;
}

} // namespace vespra
