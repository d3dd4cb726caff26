#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

/// What the system tells of other processes. Any thread.
namespace vespra {

struct ProcessFacts {
    /// Of its executable, possibly cut: "sh".
    std::string name;
    pid_t parent = 0;
    /// As in `ProcessIdentity`.
    std::uint64_t start = 0;
    /// Only its status is left, for its parent to fetch.
    bool hasEnded = false;
};

/// Absent if there is no such process, or if the system does not tell.
std::optional<ProcessFacts> processFacts(pid_t pid);

/// How long ago it started.
std::chrono::duration<double> age(const ProcessFacts& process);

/// Tells whether process identifiers mean the same in two processes; 0 where they always do, or if the system does not
/// tell.
std::uint64_t processSpace();

/// Whether a process that `parent` has started less than `limit` ago is running. Looks at every process there is.
bool hasChildYoungerThan(pid_t parent, std::chrono::duration<double> limit);

} // namespace vespra
