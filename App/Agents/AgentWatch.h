#pragma once

#include "App/Agents/AgentFiles.h"
#include "App/Agents/AgentProcesses.h"
#include "Core/Agents/AgentEvidence.h"
#include "Core/Agents/ClaudeStatus.h"
#include "Core/Agents/ClaudeTranscript.h"
#include "Core/Agents/CodexThreads.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"

#include <map>

namespace vespra {

/// By what the activity of a session is known, beside its events.
enum class AgentEvidenceKind { hooks, transcript, statusFile };

template <>
inline constexpr auto rawValues<AgentEvidenceKind> = RawValueTable<AgentEvidenceKind, 3>{{
    {AgentEvidenceKind::hooks, "hooks"},
    {AgentEvidenceKind::transcript, "transcript"},
    {AgentEvidenceKind::statusFile, "statusFile"},
}};

/// Passes the agents' events on to the tracker, and corrects it by what the agents' files and processes say. Looks only
/// while an agent session runs and some agent is tracked; else it opens no file and never wakes up. The rules are
/// `AgentCourse`'s. Main thread only.
class AgentWatch final : public AgentEvidence {
public:
    /// Between two looks, on the continuous clock.
    static constexpr Seconds interval = 10s;
    /// The most that is read of a status file.
    static constexpr std::uint64_t statusLimit = 64 * 1024; // bytes
    /// The most status files that are looked at to find one by its session.
    static constexpr std::size_t statusFileLimit = 256;
    /// Under a shorter grace delay a command may not have shown in Codex's file when the delay ends.
    static constexpr Seconds shortGrace = 35s;
    /// A program that Codex starts this soon after it has asked is a hook.
    static constexpr Seconds hookMargin = 0.5s;

    /// All of it outlives the watch.
    struct System {
        AgentFiles& files;
        AgentProcesses& processes;
        const WallClock& clock;
        TaskScheduling& tasks;
    };
    AgentWatch(AgentTracker& tracker, System system);

    void record(const AgentEvent& event);
    /// Looks now, if it looks at all: after a wake-up.
    void look();

    void sessionDidBegin(const AgentPolicy& policy) override;
    void lastLook() override;
    void sessionDidEnd() override;

    /// Of a session in the tracker, as of the last look.
    AgentEvidenceKind evidence(const std::string& sessionID) const;

    /// Called before each correction.
    std::function<void(const std::string& sessionID, const AgentCorrection& correction, AgentEvidenceKind evidence)>
        onCorrection;

private:
    struct Watched {
        AgentCourse course;
        std::string agentsID; // the agent's own identifier of the session
        CodexThreads threads; // of Codex
        // Of Claude Code:
        std::optional<std::string> statusFolder;
        /// Its status file was there.
        bool hadStatus = false;
        std::string transcriptPath; // empty: not known
        FollowedFile transcriptFile;
        ClaudeTranscript transcript;
    };
    struct Reading {
        AgentReading reading;
        AgentEvidenceKind kind = AgentEvidenceKind::hooks;
    };
    struct Found {
        std::string sessionID;
        AgentCorrection correction;
        AgentEvidenceKind kind;
    };

    static void take(const AgentEvent& event, Watched& watched);
    void lookNow(bool isLast);
    std::optional<Found> lookAt(const AgentSession& session, Watched& watched, bool isLast);
    AgentReading::Process stateOf(const Watched& watched) const;
    Reading readClaude(Watched& watched);
    Reading readClaudeTranscript(Watched& watched);
    std::optional<AgentReading::Claim> statusClaim(const ClaudeStatus& status, Watched& watched) const;
    std::optional<ClaudeStatus> findStatus(Watched& watched);
    std::optional<ClaudeStatus> readStatus(const std::string& path) const;
    const std::vector<ClaudeStatus>& statusesIn(const std::string& folder);
    Reading readCodex(Watched& watched, bool isLast);
    void lookForAnswer(Watched& watched);
    /// Gives `reader` what the file has gained; from anew if it is another file now. False if it cannot be read.
    template <class Reader> bool follow(const std::string& path, FollowedFile& file, Reader& reader);
    void apply(const Found& found);
    void forgetUntracked();
    void plan();

    AgentTracker& tracker_;
    System system_;
    std::map<std::string, Watched> watched_;
    Observed<std::map<std::string, AgentEvidenceKind>> evidence_;
    /// What the folders hold, as far as this look has read them.
    std::map<std::string, std::vector<ClaudeStatus>> statuses_;
    /// Of the running agent session; absent while none runs.
    std::optional<AgentPolicy> policy_;
    std::unique_ptr<ScheduledTask> nextLook_;
    Lifetime lifetime_;
};

} // namespace vespra
