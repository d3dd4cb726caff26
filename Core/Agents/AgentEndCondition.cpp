#include "Core/Agents/AgentEndCondition.h"

#include "Core/Lifetime.h"

namespace vespra {

AgentEndCondition::Phase AgentEndCondition::phase() const
{
    if (state_.get().isKeptAwake)
        return phase::KeptAwake{};
    if (const auto endsAt = finishesAt())
        return phase::Finishing{*endsAt};
    return state_.get().hasSeenWork ? Phase{phase::Working{}} : phase::WaitingForAgents{};
}

void AgentEndCondition::keepAwake()
{
    auto state = state_.get();
    state.isKeptAwake = true;
    state.idleSince.reset();
    state_.set(state);
    notify(onChange);
}

void AgentEndCondition::sessionDidBegin(Instant now)
{
    tracker_.pruneStale(now);
    tracker_.onChange = [weak = weak_from_this()] {
        if (const auto condition = weak.lock()) {
            condition->refresh(condition->clock_.now());
            notify(condition->onChange);
        }
    };
    if (evidence_)
        evidence_->sessionDidBegin(policy_);
    refresh(now);
}

void AgentEndCondition::refresh(Instant now)
{
    auto state = state_.get();
    if (state.isKeptAwake)
        return;
    if (tracker_.hasBusySession(policy_)) {
        state.hasSeenWork = true;
        state.idleSince.reset();
    } else if (state.hasSeenWork && !state.idleSince) {
        state.idleSince = now;
    }
    state_.set(state);
}

std::optional<Instant> AgentEndCondition::finishesAt() const
{
    const auto& idleSince = state_.get().idleSince;
    return idleSince ? std::optional{*idleSince + policy_.effectiveGraceDelay()} : std::nullopt;
}

bool AgentEndCondition::isDue(Instant now) const
{
    const auto endsAt = finishesAt();
    return endsAt && now >= *endsAt;
}

std::optional<EndReason> AgentEndCondition::evaluate(Instant now)
{
    // What is found may reach `refresh`, and take the end back.
    if (isDue(now) && evidence_)
        evidence_->lastLook();
    return isDue(now) ? std::optional<EndReason>{end::AgentsFinished{}} : std::nullopt;
}

std::optional<Instant> AgentEndCondition::nextDeadline(Instant /*now*/) { return finishesAt(); }

void AgentEndCondition::sessionDidEnd()
{
    tracker_.onChange = nullptr;
    if (evidence_)
        evidence_->sessionDidEnd();
}

} // namespace vespra
