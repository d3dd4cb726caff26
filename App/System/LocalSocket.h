#pragma once

#include "HelperProtocol/FileDescriptor.h"

#include <cstddef>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

namespace vespra {

/// One end of a local connection that speaks in lines and never blocks. Input is buffered up to a limit, then the other
/// end has to wait; output is buffered until it is read. A QCoreApplication must exist. Main thread only.
class LocalSocket {
public:
    /// Takes over a connected descriptor. Keeps at most about `mostReceived` bytes unread.
    LocalSocket(FileDescriptor descriptor, std::size_t mostReceived);
    ~LocalSocket();
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    /// There is more to read. The socket must not be destroyed inside.
    std::function<void()> onReceived;
    /// Everything that was sent has been taken. Must not destroy the socket either.
    std::function<void()> onSent;
    /// The other end has gone; called once. Must not destroy the socket either.
    std::function<void()> onClosed;

    int descriptor() const { return descriptor_.get(); }
    bool isOpen() const { return isOpen_; }
    /// Without its line feed; absent while there is no whole line.
    std::optional<std::string> takeLine();
    bool hasLine() const { return received_.contains('\n'); }
    std::size_t unreadBytes() const { return received_.size(); }

    /// Sends what it can at once and the rest as the other end reads. Does nothing once the other end has gone.
    void send(const std::string& bytes);
    std::size_t unsentBytes() const { return unsent_.size(); }

private:
    void receive();
    void sendMore();
    void close();

    FileDescriptor descriptor_;
    std::size_t mostReceived_;
    bool isOpen_ = true;
    std::string received_;
    std::string unsent_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
};

/// Takes connections of this user's programs at a path. A QCoreApplication must exist. Main thread only.
class LocalSocketServer {
public:
    explicit LocalSocketServer(std::function<void(FileDescriptor)> onConnection);
    /// Removes the socket file.
    ~LocalSocketServer();
    LocalSocketServer(const LocalSocketServer&) = delete;
    LocalSocketServer& operator=(const LocalSocketServer&) = delete;

    /// Makes the directory (0700) and the socket file (0600), in the place of one that nobody answers at, and listens.
    /// Fails with a sentence, and if somebody answers there.
    std::expected<void, std::string> listen(const std::string& path);

private:
    std::expected<void, int> open(const std::string& path);
    void accept();
    void pause();

    std::function<void(FileDescriptor)> onConnection_;
    std::string path_;
    FileDescriptor listener_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vespra
