#include "App/System/simulated/MachineSocket.h"

#include "App/System/simulated/MachineProtocol.h"
#include "App/System/SystemLog.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/UnixSocket.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <QSocketNotifier>
#include <sys/socket.h>
#include <sys/stat.h>

namespace vespra {

/// One request is read, one answer written, and the connection closed.
struct MachineSocket::Connection {
    FileDescriptor socket;
    std::string received;
    std::unique_ptr<QSocketNotifier> notifier;
};

namespace {

    bool isAnswered(const sockaddr_un& address)
    {
        const auto probe = unixSocket::make();
        return probe && connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }

} // namespace

MachineSocket::MachineSocket(std::shared_ptr<SimulatedMachine> machine, std::string path)
    : machine_{std::move(machine)}
    , path_{std::move(path)}
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path{path_}.parent_path(), ignored);
    if (!listen()) {
        SystemLog{Brand::appBundleID(), "assertions"}.error(
            "Portable simulé : écoute impossible sur " + path_ + " (" + std::strerror(errno) + ")");
        listener_.reset();
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(listener_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { accept(); });
}

MachineSocket::~MachineSocket()
{
    if (listener_)
        unlink(path_.c_str());
}

bool MachineSocket::listen()
{
    const auto address = unixSocket::address(path_);
    if (!address) {
        errno = ENAMETOOLONG;
        return false;
    }
    if (isAnswered(*address)) {
        errno = EADDRINUSE;
        return false;
    }
    unlink(path_.c_str());
    listener_ = unixSocket::make();
    // Nobody can connect before the socket listens, so others meet only its final permissions.
    return listener_ && bind(listener_.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0
        && chmod(path_.c_str(), 0600) == 0 && ::listen(listener_.get(), 8) == 0
        && unixSocket::setBlocking(listener_.get(), false);
}

void MachineSocket::accept()
{
    FileDescriptor socket{::accept(listener_.get(), nullptr, nullptr)};
    if (!socket)
        return;
    unixSocket::closeOnExec(socket.get());
    unixSocket::setBlocking(socket.get(), false);
    auto& connection = *connections_.emplace_back(std::make_unique<Connection>());
    connection.notifier = std::make_unique<QSocketNotifier>(socket.get(), QSocketNotifier::Read);
    connection.socket = std::move(socket);
    QObject::connect(
        connection.notifier.get(), &QSocketNotifier::activated, [this, &connection] { receive(connection); });
}

void MachineSocket::receive(Connection& connection)
{
    char bytes[4096];
    const auto count = read(connection.socket.get(), bytes, sizeof bytes);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0)
        connection.received.append(bytes, static_cast<std::size_t>(count));
    const auto end = connection.received.find('\n');
    if (end != std::string::npos) {
        const auto answer = machineProtocol::answer(*machine_, std::string_view{connection.received}.substr(0, end));
        // Small enough for the socket's buffer; if the other side has gone, nobody waits for it.
        [[maybe_unused]] const auto sent = send(connection.socket.get(), (answer + "\n").data(), answer.size() + 1, 0);
    } else if (count > 0 && connection.received.size() <= machineProtocol::longestRequest) {
        return;
    }
    // Later: this runs inside the notifier.
    connection.notifier->setEnabled(false);
    connection.notifier.release()->deleteLater();
    std::erase_if(connections_, [&](const auto& each) { return each.get() == &connection; });
}

} // namespace vespra
