#include "Core/Agents/CodexThreads.h"

#include <algorithm>

namespace vespra {

namespace {

    using Turn = CodexRollout::Turn;

    bool isOpen(const CodexThreads::Thread& thread) { return thread.rollout.turn() == Turn::open; }
    bool isClosed(const CodexThreads::Thread& thread) { return thread.rollout.turn() == Turn::closed; }

    std::optional<Instant> latest(const std::vector<CodexThreads::Thread>& threads, auto isMeant, auto date)
    {
        std::optional<Instant> latest;
        for (const auto& thread : threads)
            if (const auto at = isMeant(thread) ? date(thread.rollout) : std::nullopt)
                latest = std::max(*at, latest.value_or(*at));
        return latest;
    }

} // namespace

void CodexThreads::take(const AgentEvent& event)
{
    wasSubagentLast_ = event.origin.subagent.has_value();
    askedAt_ = event.signal == AgentSignal::waitingForApproval ? std::optional{event.date} : std::nullopt;
    answerSeenAt_.reset();
    const auto& path = event.origin.transcript;
    if (!path || std::ranges::find(threads_, *path, &Thread::path) != threads_.end())
        return;
    if (threads_.size() == limit) {
        const auto done = std::ranges::find_if(
            threads_, [](const Thread& thread) { return thread.isOfSubagent && isClosed(thread); });
        if (done == threads_.end())
            return;
        threads_.erase(done);
    }
    threads_.push_back({.path = *path, .isOfSubagent = wasSubagentLast_, .file = {}, .rollout = {}});
}

std::optional<AgentReading::Claim> CodexThreads::claim() const
{
    return std::ranges::any_of(threads_, isOpen) ? std::optional{openClaim()} : closedClaim();
}

std::optional<AgentReading::Claim> CodexThreads::closedClaim() const
{
    if (threads_.empty() || !std::ranges::all_of(threads_, isClosed))
        return {};
    return AgentReading::Claim{.activity = AgentActivity::idle,
        .since = latest(threads_, isClosed, [](const CodexRollout& rollout) { return rollout.turnSince(); })};
}

AgentReading::Claim CodexThreads::openClaim() const
{
    if (const auto asked = unansweredSince())
        return {.activity = AgentActivity::waitingForApproval, .since = asked};
    const bool isApart = !wasSubagentLast_
        && std::ranges::any_of(threads_, [](const Thread& thread) { return thread.isOfSubagent && isOpen(thread); });
    const auto opened = latest(threads_, isOpen, [](const CodexRollout& rollout) { return rollout.turnSince(); });
    return {.activity = AgentActivity::working, .since = askedAt_ ? answeredAt() : opened, .isApartFromEvent = isApart};
}

std::optional<Instant> CodexThreads::answeredAt() const
{
    if (!askedAt_ || answerSeenAt_)
        return answerSeenAt_;
    const auto grown = latest(threads_, isOpen, [](const CodexRollout& rollout) { return rollout.grownUntil(); });
    return grown && *grown > *askedAt_ + approvalMargin ? grown : std::nullopt;
}

std::optional<Instant> CodexThreads::unansweredSince() const { return answeredAt() ? std::nullopt : askedAt_; }

} // namespace vespra
