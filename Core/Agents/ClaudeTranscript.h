#pragma once

#include "Core/Agents/LineHeads.h"
#include "Core/Scheduling/Instant.h"

#include <optional>

namespace vespra {

/// Follows the file into which Claude Code writes a session's messages, for the versions that have no status file. It
/// tells only two ends that no event tells: an interruption by the user, and an error of the service.
class ClaudeTranscript {
public:
    /// The bytes that stand behind those taken before.
    void take(std::string_view bytes);
    /// Begins anew, at a place from which on nothing has been taken.
    void restart(bool isInsideLine);
    void skip() { restart(true); }

    /// When the turn ended that way; absent if the last message is any other.
    std::optional<Instant> endedAt() const { return endedAt_; }

private:
    void takeLine(const LineHeads::Line& line);

    LineHeads lines_;
    std::optional<Instant> endedAt_;
};

} // namespace vespra
