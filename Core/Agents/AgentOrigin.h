#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vespra {

/// A process, told from any later one that is given the same number.
struct ProcessIdentity {
    std::int64_t pid = 0; // positive
    /// When it started, as its system counts: ticks since the start of the computer on Linux, microseconds since 1970
    /// on macOS.
    std::uint64_t start = 0;
    /// The numbers of containers mean nothing outside them: the name space of `pid`; 0 where there is only one.
    std::uint64_t space = 0;

    bool operator==(const ProcessIdentity&) const = default;
};

/// What an event says beside the activity, for what can be known beyond it. Each part may be missing: older versions of
/// the agents and of the hook command do not tell.
struct AgentOrigin {
    /// The agent's own process.
    std::optional<ProcessIdentity> process;
    /// That process is certainly the agent, and no program that only runs the hook.
    bool isProcessCertain = false;
    /// The path of the file into which the session, or its subagent, is written.
    std::optional<std::string> transcript;
    /// Of the subagent that the event is about; never empty.
    std::optional<std::string> subagent;
    /// The session begins anew only to make its context smaller; its turn goes on.
    bool isCompaction = false;
    /// The turn has ended, but agents of it work on in the background.
    bool leavesAgentsRunning = false;

    bool operator==(const AgentOrigin&) const = default;
};

} // namespace vespra
