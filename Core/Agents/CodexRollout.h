#pragma once

#include "Core/Agents/LineHeads.h"
#include "Core/Scheduling/Instant.h"

#include <optional>

namespace vespra {

/// Follows the file into which Codex writes one thread, the session's own or that of a subagent, line by line. Its text
/// is taken in any pieces.
class CodexRollout {
public:
    enum class Turn { unknown, open, closed };

    /// The bytes that stand behind those taken before.
    void take(std::string_view bytes);
    /// Begins anew, at a place from which on nothing has been taken.
    void restart(bool isInsideLine);
    /// Goes on behind bytes that are left out. What was open still is, or its end will follow.
    void skip();

    /// Unknown before the first marker.
    Turn turn() const { return turn_; }
    /// The date in the line that opened or closed the turn.
    std::optional<Instant> turnSince() const { return turnSince_; }
    /// The date in the last complete line: how far the file has grown.
    std::optional<Instant> grownUntil() const { return grownUntil_; }

private:
    void takeLine(std::string_view head);

    LineHeads lines_;
    Turn turn_ = Turn::unknown;
    std::optional<Instant> turnSince_;
    std::optional<Instant> grownUntil_;
};

} // namespace vespra
