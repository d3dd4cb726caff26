#pragma once

#include "HelperProtocol/UnixSocket.h"

#include <csignal>
#include <stdexcept>
#include <string>
#include <sys/socket.h>

namespace vespra {

/// A program that connects to a local socket and writes whatever a test wants.
class LocalClient {
public:
    LocalClient()
        : socket_{unixSocket::make()}
    {
        std::signal(SIGPIPE, SIG_IGN);
    }
    explicit LocalClient(const std::string& path)
        : LocalClient{}
    {
        if (!connect(path))
            throw std::runtime_error{"cannot connect to " + path};
    }

    bool connect(const std::string& path)
    {
        const auto address = unixSocket::address(path).value();
        return ::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    /// Stops quietly where the other side has closed.
    void write(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const auto count = ::write(socket_.get(), bytes.data(), bytes.size());
            if (count <= 0)
                return;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    /// Ends the stream and keeps the descriptor.
    void finish() { shutdown(socket_.get(), SHUT_WR); }
    int descriptor() const { return socket_.get(); }

private:
    FileDescriptor socket_;
};

} // namespace vespra
