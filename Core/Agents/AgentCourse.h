#pragma once

#include "Core/Agents/AgentTracker.h"

namespace vespra {

/// What can be known of a session beside its events, as found at one moment. A file that is missing, torn or of a form
/// that is not known says nothing.
struct AgentReading {
    enum class Process { unknown, alive, gone };

    /// What the agent's own files say that it does.
    struct Claim {
        AgentActivity activity = AgentActivity::idle;
        /// By the date in the file; absent without one.
        std::optional<Instant> since;
        /// It says so of something that the last event was not about: of a subagent, where the main agent spoke last.
        bool isApartFromEvent = false;

        bool operator==(const Claim&) const = default;
    };

    Process process = Process::unknown;
    std::optional<Claim> claim;
};

/// What the tracker has wrong about a session.
struct AgentCorrection {
    /// Absent: the session has ended.
    std::optional<AgentActivity> activity;
    /// Since when; never in the future.
    Instant since;

    bool operator==(const AgentCorrection&) const = default;
};

/// Weighs what a session's events said against what is found beside them. The rules err on the side of the events, and
/// of work: finished becomes working only while the agent's process lives, working becomes finished only where a file
/// says so and never by silence. One for each session; a value, without clock and files.
class AgentCourse {
public:
    /// For this long after an event nothing that says less than it counts: files are written a moment later.
    static constexpr Seconds eventRest = 3s;
    /// A reading that says less counts once it is this old; states of a tenth of a second occur in between.
    static constexpr Seconds readingAge = 2s;
    /// Or once it has been seen twice, at least this long apart.
    static constexpr Seconds sightingsApart = 1s;

    /// To be called before the tracker records the event; `before` is the session as it was, null for a new one.
    void take(const AgentEvent& event, const AgentSession* before);

    /// What the last event itself says beside its signal, once: of an event that says finished, or begun anew, although
    /// the work goes on.
    std::optional<AgentCorrection> takeRemark() { return std::exchange(remark_, {}); }

    /// What `reading` changes about a session that is `current` in the tracker; absent for nothing.
    std::optional<AgentCorrection> judge(const AgentReading& reading, AgentActivity current, Instant now);

    Instant lastEventAt() const { return lastEventAt_; }

    /// The agent's process, by its events or by its own file. Where the events are not certain of it, another event or
    /// look has to show that it is no program that only ran the hook.
    const std::optional<ProcessIdentity>& process() const { return process_; }
    /// A file of the agent names its process.
    void adopt(const ProcessIdentity& process);

private:
    bool counts(const AgentReading& reading, AgentActivity current, Instant now);
    bool isSettled(const AgentReading::Claim& claim, Instant now);

    Instant lastEventAt_;
    /// When the events last changed what the tracker says: one that repeats it does not take a look back.
    Instant changedAt_;
    std::optional<AgentCorrection> remark_;
    std::optional<ProcessIdentity> process_;
    bool isProcessCertain_ = false;
    /// The first look at which a reading said less than the tracker.
    struct Sighting {
        AgentActivity activity;
        Instant at;
    };
    std::optional<Sighting> sighting_;
};

} // namespace vespra
