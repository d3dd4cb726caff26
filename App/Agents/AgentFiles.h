#pragma once

#include "Core/Agents/FollowedFile.h"

#include <string>
#include <vector>

namespace vespra {

/// Reads the files that agents write for themselves. They belong to others: nothing here opens one for writing or locks
/// it. Links are followed; what is no regular file counts as missing, and never blocks. Main thread only.
class AgentFiles {
public:
    virtual ~AgentFiles() = default;

    /// Absent if there is no such regular file.
    virtual std::optional<FileFacts> facts(const std::string& path) = 0;
    /// Up to `length` bytes from `from` on, fewer where the file ends. Absent if it cannot be read, or is no longer
    /// the one that `expected` tells of.
    virtual std::optional<std::string> read(
        const std::string& path, const FileFacts& expected, std::uint64_t from, std::uint64_t length)
        = 0;
    /// The names in a folder, at most `limit` of them, in no order; empty if there is no such folder.
    virtual std::vector<std::string> names(const std::string& folder, std::size_t limit) = 0;
};

/// This computer's files.
AgentFiles& systemAgentFiles();

} // namespace vespra
