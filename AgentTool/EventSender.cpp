#include "AgentTool/EventSender.h"

#include "AgentTool/Deadline.h"
#include "HelperProtocol/UnixSocket.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace vespra {

namespace {

    bool isPending(int reason)
    {
        return reason == EAGAIN || reason == EINPROGRESS || reason == EALREADY || reason == EINTR;
    }

    /// `poll` does not announce room in a full backlog, so connecting is tried again in small steps.
    bool connected(int socket, const sockaddr_un& address, const Deadline& deadline)
    {
        constexpr int step = 5; // milliseconds
        while (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            if (errno == EISCONN)
                return true;
            if (!isPending(errno) || deadline.hasPassed())
                return false;
            poll(nullptr, 0, std::min(step, deadline.remaining()));
        }
        return true;
    }

    bool written(int socket, std::string_view bytes, const Deadline& deadline)
    {
        while (!bytes.empty()) {
            const auto count = write(socket, bytes.data(), bytes.size());
            if (count >= 0) {
                bytes.remove_prefix(static_cast<std::size_t>(count));
                continue;
            }
            if (!isPending(errno) || deadline.hasPassed())
                return false;
            pollfd room{socket, POLLOUT, 0};
            poll(&room, 1, deadline.remaining());
        }
        return true;
    }

} // namespace

bool sendLine(std::string line, std::string_view path)
{
    const Deadline deadline{sendingLimit};
    const auto address = unixSocket::address(path);
    if (!address)
        return false;
    const auto socket = unixSocket::make();
    line += '\n';
    return socket && unixSocket::setBlocking(socket.get(), false) && connected(socket.get(), *address, deadline)
        && written(socket.get(), line, deadline);
}

} // namespace vespra
