#include "App/System/LocalSocket.h"

#include "HelperProtocol/UnixSocket.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <QSocketNotifier>
#include <QTimer>
#include <sys/socket.h>
#include <sys/stat.h>

namespace vespra {

LocalSocket::LocalSocket(FileDescriptor descriptor, std::size_t mostReceived)
    : descriptor_{std::move(descriptor)}
    , mostReceived_{mostReceived}
    , readable_{std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Read)}
    , writable_{std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Write)}
{
    writable_->setEnabled(false);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, [this] { receive(); });
    QObject::connect(writable_.get(), &QSocketNotifier::activated, [this] { sendMore(); });
}

LocalSocket::~LocalSocket() = default;

void LocalSocket::receive()
{
    char bytes[4096];
    const auto count = read(descriptor_.get(), bytes, sizeof bytes);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return close();
    received_.append(bytes, static_cast<std::size_t>(count));
    readable_->setEnabled(received_.size() < mostReceived_);
    if (const auto copy = onReceived)
        copy();
}

std::optional<std::string> LocalSocket::takeLine()
{
    const auto end = received_.find('\n');
    if (end == std::string::npos)
        return {};
    auto line = received_.substr(0, end);
    received_.erase(0, end + 1);
    readable_->setEnabled(isOpen_ && received_.size() < mostReceived_);
    return line;
}

void LocalSocket::send(const std::string& bytes)
{
    if (!isOpen_)
        return;
    unsent_ += bytes;
    if (!writable_->isEnabled())
        sendMore();
}

void LocalSocket::sendMore()
{
    while (!unsent_.empty()) {
        const auto count = ::send(descriptor_.get(), unsent_.data(), unsent_.size(), 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno != EAGAIN) {
            // What the other end has sent before is still to be read; after that reading finds the end.
            unsent_.clear();
            break;
        }
        if (count < 0)
            return writable_->setEnabled(true);
        unsent_.erase(0, static_cast<std::size_t>(count));
    }
    const bool hadToWait = writable_->isEnabled();
    writable_->setEnabled(false);
    if (const auto copy = onSent; copy && hadToWait)
        copy();
}

void LocalSocket::close()
{
    isOpen_ = false;
    unsent_.clear();
    readable_->setEnabled(false);
    writable_->setEnabled(false);
    if (const auto copy = onClosed)
        copy();
}

LocalSocketServer::LocalSocketServer(std::function<void(FileDescriptor)> onConnection)
    : onConnection_{std::move(onConnection)}
{
}

LocalSocketServer::~LocalSocketServer()
{
    if (listener_)
        unlink(path_.c_str());
}

std::expected<void, std::string> LocalSocketServer::listen(const std::string& path)
{
    std::error_code ignored;
    const auto folder = std::filesystem::path{path}.parent_path();
    if (std::filesystem::create_directories(folder, ignored))
        chmod(folder.c_str(), 0700);
    if (const auto opened = open(path); !opened) {
        listener_.reset();
        return std::unexpected{std::strerror(opened.error())}; // NOLINT(concurrency-mt-unsafe): main thread only
    }
    path_ = path;
    notifier_ = std::make_unique<QSocketNotifier>(listener_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { accept(); });
    return {};
}

std::expected<void, int> LocalSocketServer::open(const std::string& path)
{
    const auto address = unixSocket::address(path);
    if (!address)
        return std::unexpected{ENAMETOOLONG};
    const auto* const bound = reinterpret_cast<const sockaddr*>(&*address);
    if (const auto probe = unixSocket::make(); probe && connect(probe.get(), bound, sizeof *address) == 0)
        return std::unexpected{EADDRINUSE};
    unlink(path.c_str());
    listener_ = unixSocket::make();
    constexpr int backlog = 32;
    // Nobody can connect before the socket listens, so others meet only its final permissions.
    if (!listener_ || bind(listener_.get(), bound, sizeof *address) != 0 || chmod(path.c_str(), 0600) != 0
        || ::listen(listener_.get(), backlog) != 0 || !unixSocket::setBlocking(listener_.get(), false))
        return std::unexpected{errno};
    return {};
}

void LocalSocketServer::accept()
{
    FileDescriptor connection{::accept(listener_.get(), nullptr, nullptr)};
    if (!connection) {
        if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED)
            pause();
        return;
    }
    unixSocket::closeOnExec(connection.get());
    unixSocket::setBlocking(connection.get(), false);
    onConnection_(std::move(connection));
}

/// Descriptors have run out. Waiting connections keep the listener readable until some are free again, so it is not
/// watched for a while.
void LocalSocketServer::pause()
{
    constexpr std::chrono::milliseconds length{100};
    notifier_->setEnabled(false);
    QTimer::singleShot(length, notifier_.get(), [this] { notifier_->setEnabled(true); });
}

} // namespace vespra
