#include "AgentTool/HookInputReader.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace vespra {

namespace {

    /// As much as a pipe holds on Linux: most inputs take one read.
    using Piece = std::array<char, 65'536>;

} // namespace

std::optional<HookInput> HookInputReader::read()
{
    using Progress = HookInputParser::Progress;
    HookInputParser parser;
    Piece piece;
    std::size_t total = 0;
    while (const auto size = readPiece(piece.data(), piece.size())) {
        total += size;
        if (total > sizeLimit)
            return {};
        const auto progress = parser.add({piece.data(), size});
        if (progress == Progress::complete)
            return parser.input();
        if (progress == Progress::invalid)
            return {};
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
    // The agent may share the open file description, so it must not be set to non-blocking; poll tells when a read will
    // not block.
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
