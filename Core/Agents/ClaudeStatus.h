#pragma once

#include "Core/Agents/AgentActivity.h"
#include "Core/Scheduling/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// What Claude Code says of one of its processes in "sessions/<pid>.json" of its configuration folder: a small file
/// that it rewrites in place at every change, and leaves behind when it is killed.
struct ClaudeStatus {
    std::int64_t pid = 0;
    std::string sessionID;
    /// Absent where it is not written as a number, which only Linux does: `ProcessIdentity::start`.
    std::optional<std::uint64_t> processStart;
    /// Absent for a word that is not known.
    std::optional<AgentActivity> activity;
    /// Since when, by the date in the file.
    std::optional<Instant> since;

    bool operator==(const ClaudeStatus&) const = default;
};

/// Reads the first complete JSON value of `bytes`: remains of a longer text may stand behind it. Absent if there is
/// none, or if it does not name its process and its session.
std::optional<ClaudeStatus> claudeStatus(std::string_view bytes);

/// The folder of the status files that belong to `transcript`, "<configuration>/projects/<project>/<session>.jsonl";
/// absent if that is not the form of the path.
std::optional<std::string> claudeStatusFolder(std::string_view transcript);

} // namespace vespra
