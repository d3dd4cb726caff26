#include "Core/Agents/ClaudeTranscript.h"
#include "Core/Agents/CodexRollout.h"
#include "Tests/Fuzz/Check.h"

#include <cstdint>

using namespace vespra;

/// Transcripts read alike wherever they are cut, and what has no line feed yet counts for nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text{reinterpret_cast<const char*>(data), size};
    const auto cut = size > 0 ? data[0] * size / 256 : 0;
    CodexRollout codex, codexInPieces;
    ClaudeTranscript claude, claudeInPieces;
    codex.take(text);
    claude.take(text);
    for (const auto piece : {text.substr(0, cut), text.substr(cut)}) {
        codexInPieces.take(piece);
        claudeInPieces.take(piece);
    }
    check(codex.turn() == codexInPieces.turn() && codex.turnSince() == codexInPieces.turnSince());
    check(codex.grownUntil() == codexInPieces.grownUntil());
    check(claude.endedAt() == claudeInPieces.endedAt());
    CodexRollout lines;
    lines.take(text.substr(0, text.rfind('\n') + 1)); // npos + 1 is 0: no line
    check(lines.turn() == codex.turn() && lines.grownUntil() == codex.grownUntil());
    return 0;
}
