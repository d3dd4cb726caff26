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
            if (const auto at = isMeant(thread) ? date(thread) : std::nullopt)
                latest = std::max(*at, latest.value_or(*at));
        return latest;
    }

    auto turnSince(const CodexThreads::Thread& thread) { return thread.rollout.turnSince(); }

} // namespace

void CodexThreads::take(const AgentEvent& event)
{
    const auto& process = event.origin.process;
    // What a process that is gone left open stays so for ever.
    if (process && event.origin.isProcessCertain && std::exchange(process_, process) != process)
        threads_.clear();
    wasSubagentLast_ = event.origin.subagent.has_value();
    answerSeenAt_.reset();
    const auto& path = event.origin.transcript;
    if (!path)
        return;
    auto thread = std::ranges::find(threads_, *path, &Thread::path);
    if (thread == threads_.end()) {
        if (threads_.size() == limit) {
            const auto done
                = std::ranges::find_if(threads_, [](const Thread& one) { return one.isOfSubagent && isClosed(one); });
            if (done == threads_.end())
                return;
            threads_.erase(done);
        }
        threads_.push_back({.path = *path, .isOfSubagent = wasSubagentLast_, .file = {}, .rollout = {}, .askedAt = {}});
        thread = std::prev(threads_.end());
    }
    thread->askedAt = event.signal == AgentSignal::waitingForApproval ? std::optional{event.date} : std::nullopt;
}

std::optional<AgentReading::Claim> CodexThreads::claim() const
{
    return std::ranges::any_of(threads_, isOpen) ? std::optional{openClaim()} : closedClaim();
}

std::optional<AgentReading::Claim> CodexThreads::closedClaim() const
{
    if (threads_.empty() || !std::ranges::all_of(threads_, isClosed))
        return {};
    return AgentReading::Claim{.activity = AgentActivity::idle, .since = latest(threads_, isClosed, turnSince)};
}

AgentReading::Claim CodexThreads::openClaim() const
{
    const auto works = [this](const Thread& thread) { return isWorking(thread); };
    if (std::ranges::none_of(threads_, works))
        return {.activity = AgentActivity::waitingForApproval, .since = unansweredSince()};
    const bool isApart = !wasSubagentLast_
        && std::ranges::any_of(threads_, [&](const Thread& thread) { return thread.isOfSubagent && works(thread); });
    const auto since = [this](const Thread& thread) { return thread.askedAt ? answeredAt(thread) : turnSince(thread); };
    return {.activity = AgentActivity::working, .since = latest(threads_, works, since), .isApartFromEvent = isApart};
}

bool CodexThreads::isWorking(const Thread& thread) const
{
    return isOpen(thread) && (!thread.askedAt || answeredAt(thread));
}

std::optional<Instant> CodexThreads::answeredAt(const Thread& thread) const
{
    if (answerSeenAt_)
        return answerSeenAt_;
    const auto grown = thread.rollout.grownUntil();
    return grown && *grown > *thread.askedAt + approvalMargin ? grown : std::nullopt;
}

std::optional<Instant> CodexThreads::unansweredSince() const
{
    const auto isAsking = [this](const Thread& thread) { return isOpen(thread) && !isWorking(thread); };
    return latest(threads_, isAsking, [](const Thread& thread) { return thread.askedAt; });
}

} // namespace vespra
