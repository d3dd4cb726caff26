#pragma once

#include "AgentTool/Deadline.h"

#include <optional>
#include <string>

namespace vespra {

/// Reads what an agent gives its hook on standard input. Never waits for the end of the input: some agents leave it
/// open.
class HookInputReader {
public:
    static constexpr std::size_t sizeLimit = std::size_t{16} << 20;
    static constexpr auto timeLimit = std::chrono::milliseconds{1000};

    /// The time runs from here on. `descriptor` stays the caller's.
    explicit HookInputReader(int descriptor)
        : descriptor_{descriptor}
    {
    }

    /// The input up to the piece that completes its JSON object. Absent if the object did not end before the input, the
    /// time or the size limit.
    std::optional<std::string> read();

    /// Takes and drops what still comes until the input or the time ends, so that the agent's writing does not fail.
    void drain();

private:
    /// The number of bytes; 0 at the end, after a failure, and when the time has passed.
    std::size_t readPiece(char* into, std::size_t size);

    int descriptor_;
    Deadline deadline_{timeLimit};
};

} // namespace vespra
