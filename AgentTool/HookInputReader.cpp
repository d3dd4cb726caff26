#include "AgentTool/HookInputReader.h"

#include "Core/Agents/HookInput.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace vespra {

namespace {

    /// What a pipe holds.
    using Piece = std::array<char, 65'536>;

} // namespace

std::optional<std::string> HookInputReader::read()
{
    std::string input;
    HookInputProgress progress;
    Piece piece;
    while (const auto size = readPiece(piece.data(), piece.size())) {
        if (input.size() + size > sizeLimit)
            return {};
        input.append(piece.data(), size);
        progress.add({piece.data(), size});
        if (progress.isComplete())
            return input;
    }
    return {};
}

void HookInputReader::drain()
{
    Piece piece;
    while (readPiece(piece.data(), piece.size()) > 0) {
    }
}

std::size_t HookInputReader::readPiece(char* into, std::size_t size)
{
    // The agent may share the open file, so its mode stays as it is: poll tells when a read does not block.
    while (!deadline_.hasPassed()) {
        pollfd input{descriptor_, POLLIN, 0};
        if (poll(&input, 1, deadline_.remaining()) <= 0)
            continue;
        const auto count = ::read(descriptor_, into, size);
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (errno != EINTR && errno != EAGAIN)
            return 0;
    }
    return 0;
}

} // namespace vespra
