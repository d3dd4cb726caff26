#pragma once

// AgentTool: the hook command, a small static program: input, one event, one line to the application's socket.

#include "AgentTool/Deadline.h"
#include "Core/Agents/HookInput.h"

#include <cstddef>
#include <optional>

namespace vespra {

/// Reads what an agent writes to its hook's standard input. Never waits for the end of the input: some agents leave it
/// open.
class HookInputReader {
public:
    static constexpr std::size_t sizeLimit = std::size_t{16} << 20; // bytes
    static constexpr auto timeLimit = std::chrono::milliseconds{1000};

    /// The time runs from here on. `descriptor` stays the caller's.
    explicit HookInputReader(int descriptor)
        : descriptor_{descriptor}
    {
    }

    /// What the JSON object says, as soon as its end has arrived. Absent if the input is invalid, or if the end of the
    /// input, the time limit or the size limit comes first.
    std::optional<HookInput> read();

    /// Reads and discards the rest of the input, within the time limit, so that the agent's write does not fail.
    void drain();

private:
    /// The number of bytes read; 0 at the end of the input, after a failure and when the time is up.
    std::size_t readPiece(char* into, std::size_t size);

    int descriptor_;
    Deadline deadline_{timeLimit};
};

} // namespace vespra
