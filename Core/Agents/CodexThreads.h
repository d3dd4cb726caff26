#pragma once

#include "Core/Agents/AgentCourse.h"
#include "Core/Agents/CodexRollout.h"
#include "Core/Agents/FollowedFile.h"

#include <vector>

namespace vespra {

/// The files of one Codex session: its own, and those of the subagents whose events carry its identifier. It works
/// while the turn of any of them is open.
class CodexThreads {
public:
    struct Thread {
        std::string path;
        bool isOfSubagent = false;
        FollowedFile file;
        CodexRollout rollout;
        /// By its last event, which asked the user.
        std::optional<Instant> askedAt;
    };
    /// Files that are kept; those of subagents that have finished make room for others.
    static constexpr std::size_t limit = 32;
    /// What is written this soon after a question to the user still belongs to asking it.
    static constexpr Seconds approvalMargin = 1s;

    void take(const AgentEvent& event);

    /// To be read, and each to be given what it has gained.
    std::vector<Thread>& all() { return threads_; }

    /// Absent if no file says anything.
    std::optional<AgentReading::Claim> claim() const;

    /// Since when the user is being asked, by the events, and no file shows an answer; else absent.
    std::optional<Instant> unansweredSince() const;
    /// A command that can only have started after the answer was running at `at`.
    void sawAnswer(Instant at) { answerSeenAt_ = at; }

private:
    /// When a file of an open turn gained something after the question; absent if none did.
    std::optional<Instant> answeredAt(const Thread& thread) const;
    bool isWorking(const Thread& thread) const;
    std::optional<AgentReading::Claim> closedClaim() const;
    AgentReading::Claim openClaim() const;

    std::vector<Thread> threads_;
    std::optional<ProcessIdentity> process_; // as far as the events are certain of it
    std::optional<Instant> answerSeenAt_;
    bool wasSubagentLast_ = false;
};

} // namespace vespra
