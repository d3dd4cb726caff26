#include "Core/Agents/AgentCourse.h"

#include <algorithm>

namespace vespra {

namespace {

    /// An event that contradicts itself: by its signal the session is idle, by the rest it goes on as before.
    std::optional<AgentCorrection> remarkOf(const AgentEvent& event, const AgentSession* before)
    {
        const bool wasBusy = before && before->activity != AgentActivity::idle;
        if (event.origin.isCompaction && wasBusy)
            return AgentCorrection{.activity = before->activity, .since = before->activitySince};
        if (!event.origin.leavesAgentsRunning)
            return {};
        const bool wasWorking = before && before->activity == AgentActivity::working;
        return AgentCorrection{
            .activity = AgentActivity::working, .since = wasWorking ? before->activitySince : event.date};
    }

    /// A date in the future is that of a clock that has been set back since; nothing can be said of its age.
    bool isRested(Instant event, Instant now) { return now < event || now - event >= AgentCourse::eventRest; }

} // namespace

void AgentCourse::take(const AgentEvent& event, const AgentSession* before)
{
    lastEventAt_ = event.date;
    if (!before || before->activity != activityAfter(event.signal))
        changedAt_ = event.date;
    sighting_.reset();
    remark_ = remarkOf(event, before);
    if (!event.origin.process)
        return;
    // A program that only ran the hook has gone by the next event.
    isProcessCertain_ = event.origin.isProcessCertain || process_ == event.origin.process;
    process_ = event.origin.process;
}

void AgentCourse::adopt(const ProcessIdentity& process)
{
    process_ = process;
    isProcessCertain_ = true;
}

std::optional<AgentCorrection> AgentCourse::judge(const AgentReading& reading, AgentActivity current, Instant now)
{
    if (reading.process == AgentReading::Process::alive && isRested(lastEventAt_, now))
        isProcessCertain_ = true;
    if (reading.process == AgentReading::Process::gone && isProcessCertain_)
        return isRested(lastEventAt_, now) ? std::optional{AgentCorrection{.activity = {}, .since = now}}
                                           : std::nullopt;
    if (!counts(reading, current, now))
        return {};
    return AgentCorrection{
        .activity = reading.claim->activity, .since = std::min(reading.claim->since.value_or(now), now)};
}

bool AgentCourse::counts(const AgentReading& reading, AgentActivity current, Instant now)
{
    const auto& claim = reading.claim;
    const bool saysLess = claim && isBusier(current, claim->activity);
    // A reading that says nothing does not contradict the one before.
    if (claim && !saysLess)
        sighting_.reset();
    if (!claim || claim->activity == current)
        return false;
    if (saysLess)
        return isRested(lastEventAt_, now) && isSettled(*claim, now);
    const bool isNewer = claim->isApartFromEvent || (claim->since && *claim->since > lastEventAt_);
    return reading.process == AgentReading::Process::alive && (isNewer || isRested(changedAt_, now));
}

bool AgentCourse::isSettled(const AgentReading::Claim& claim, Instant now)
{
    if (claim.since && now - *claim.since >= readingAge)
        return true;
    // Seen anew as well after the clock was set back.
    if (!sighting_ || sighting_->activity != claim.activity || now < sighting_->at)
        sighting_ = Sighting{.activity = claim.activity, .at = now};
    return now - sighting_->at >= sightingsApart;
}

} // namespace vespra
