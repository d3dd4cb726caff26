#include "App/Agents/AgentSocketReceiver.h"

#include "App/Agents/AgentSocketServer.h"
#include "HelperProtocol/UnixSocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <ranges>

namespace vespra {

namespace {

    constexpr auto milliseconds(std::chrono::milliseconds length) { return static_cast<int>(length.count()); }

    /// The wait before each read keeps the time limit already, and can be interrupted. This second limit is for a read
    /// that finds nothing although data was announced.
    void setReceiveTimeout(int connection)
    {
        const timeval limit{.tv_sec = AgentSocketServer::receiveTimeout.count(), .tv_usec = 0};
        // A failure is ignored: macOS refuses this once the client has closed, and then no read waits anyway.
        setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }

    ssize_t readUninterrupted(int descriptor, char* into, std::size_t size)
    {
        ssize_t count = 0;
        do
            count = read(descriptor, into, size);
        while (count < 0 && errno == EINTR);
        return count;
    }

} // namespace

AgentSocketReceiver::AgentSocketReceiver(int listener, int stop, std::function<void(AgentEvent)> deliver)
    : listener_{listener}
    , stop_{stop}
    , deliver_{std::move(deliver)}
{
}

void AgentSocketReceiver::run()
{
    while (waitFor(listener_, -1) != Wait::stopped)
        if (const auto connection = accept())
            receive(connection);
}

AgentSocketReceiver::Wait AgentSocketReceiver::waitFor(int descriptor, int milliseconds) const
{
    std::array<pollfd, 2> waits{{{stop_, POLLIN, 0}, {descriptor, POLLIN, 0}}};
    int ready = 0;
    do
        ready = poll(waits.data(), waits.size(), milliseconds);
    while (ready < 0 && errno == EINTR);
    if (waits[0].revents != 0)
        return Wait::stopped;
    return ready > 0 ? Wait::ready : Wait::timedOut;
}

FileDescriptor AgentSocketReceiver::accept() const
{
    FileDescriptor connection{::accept(listener_, nullptr, nullptr)};
    if (!connection) {
        // Unless the client has gone again, the cause lasts: no descriptors, no memory. Trying again at once would only
        // spin; the connection stays in the backlog meanwhile.
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR && errno != ECONNABORTED)
            waitFor(-1, milliseconds(AgentSocketServer::exhaustionPause));
        return {};
    }
    unixSocket::closeOnExec(connection.get());
    // On macOS a connection inherits the listener's mode.
    unixSocket::setBlocking(connection.get(), true);
    setReceiveTimeout(connection.get());
    return connection;
}

void AgentSocketReceiver::receive(const FileDescriptor& connection) const
{
    const auto received = readToEnd(connection.get());
    if (!received)
        return;
    for (const auto piece : std::views::split(*received, '\n')) {
        const std::string_view line{piece.begin(), piece.end()};
        if (line.empty())
            continue;
        if (auto event = decodedAgentEvent(line))
            deliver_(*std::move(event));
    }
}

std::optional<std::string> AgentSocketReceiver::readToEnd(int connection) const
{
    std::string received;
    std::array<char, AgentSocketServer::readSize> chunk;
    while (received.size() < AgentSocketServer::connectionLimit) {
        const auto wait = waitFor(connection, milliseconds(AgentSocketServer::receiveTimeout));
        if (wait == Wait::stopped)
            return {};
        if (wait == Wait::timedOut)
            break;
        const auto count = readUninterrupted(connection, chunk.data(), chunk.size());
        if (count <= 0)
            break;
        received.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return received;
}

} // namespace vespra
