#include "ControlProtocol/ControlClient.h"

#include "HelperProtocol/UnixSocket.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "Core/Coding/JSONSource.h"

namespace vespra {

bool ControlClient::connect(const std::string& path)
{
    socket_ = unixSocket::make();
    const auto address = unixSocket::address(path);
    if (!socket_ || !address)
        return false;
    const timeval limit{.tv_sec = 5, .tv_usec = 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    return ::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0;
}

bool ControlClient::send(const ControlRequest& request)
{
    const auto line = controlProtocol::line(request);
    std::string_view rest = line;
    while (!rest.empty()) {
        const auto count = write(socket_.get(), rest.data(), rest.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool ControlClient::waitToRead(std::optional<Seconds> limit, int output) const
{
    // `poll` reports an output without a reader even if no event is asked for, and skips "none", which is negative.
    std::array<pollfd, 2> waiting{
        {{.fd = socket_.get(), .events = POLLIN, .revents = 0}, {.fd = output, .events = 0, .revents = 0}}};
    const int milliseconds = limit ? static_cast<int>(std::ceil(limit->count() * 1000)) : -1;
    while (waiting[0].revents == 0) {
        const int ready = poll(waiting.data(), waiting.size(), milliseconds);
        if (ready == 0 || (ready < 0 && errno != EINTR) || (waiting[1].revents & (POLLERR | POLLHUP)) != 0)
            return false;
        if (ready > 0 && waiting[1].revents != 0)
            waiting[1].fd = none; // a kind of file that this system cannot follow
    }
    return true;
}

std::optional<JSON> ControlClient::receive(std::optional<Seconds> limit, int output)
{
    while (received_.find('\n') == std::string::npos) {
        char bytes[4096];
        if (!waitToRead(limit, output)) {
            errno = ETIMEDOUT;
            return {};
        }
        const auto count = read(socket_.get(), bytes, sizeof bytes);
        if (count <= 0) {
            errno = ECONNRESET;
            return {};
        }
        received_.append(bytes, static_cast<std::size_t>(count));
    }
    const auto end = received_.find('\n');
    const auto json = parsedJSON(std::string_view{received_}.substr(0, end));
    received_.erase(0, end + 1);
    return json;
}

} // namespace vespra
