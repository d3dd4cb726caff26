#pragma once

#include "Core/Agents/AgentEvent.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/WallClock.h"
#include "HelperProtocol/FileDescriptor.h"
#include "Log/SystemLog.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <sys/un.h>
#include <thread>

namespace vespra {

/// Receives the agents' events on a Unix-domain socket and hands them to the main thread, one task per event. Reads on
/// a thread of its own, one connection at a time; everything public belongs to the main thread.
class AgentSocketServer {
public:
    /// How many connections wait to be accepted.
    static constexpr int backlog = 16;
    static constexpr std::size_t readSize = 4096;
    /// Bytes of one connection that are read; the rest is ignored.
    static constexpr std::size_t connectionLimit = 65'536;
    /// How long a read waits for a client that sends nothing.
    static constexpr auto receiveTimeout = 1s;
    /// The pause before accepting again when the process has run out of descriptors; new clients wait that long.
    static constexpr auto exhaustionPause = 100ms;

    using OnEvent = std::function<void(const AgentEvent&)>;

    /// Touches nothing yet. `onEvent` runs on the main thread with each event, dated by `clock` at its receipt; never
    /// after the server is gone. `loop` and `clock`, which is asked from the server's thread, outlive the server.
    AgentSocketServer(std::string path, MainLoop& loop, const WallClock& clock, OnEvent onEvent);
    /// Does not wait for clients. Removes the socket file, unless another server has put its own in its place.
    ~AgentSocketServer();
    AgentSocketServer(const AgentSocketServer&) = delete;
    AgentSocketServer& operator=(const AgentSocketServer&) = delete;

    /// Makes the directory (0700) and the socket file (0600) and listens. A failure is logged and leaves the server
    /// without events.
    void start();
    bool isListening() const { return thread_.joinable(); }

private:
    /// What tells the socket file that this server made from any other.
    struct FileIdentity {
        dev_t device;
        ino_t inode;
        bool operator==(const FileIdentity&) const = default;
    };
    static std::optional<FileIdentity> identity(const std::string& path);

    void listen(FileDescriptor socket);
    bool bindAndListen(int socket, const sockaddr_un& address);
    /// `reason` is the system's error number.
    void giveUpListening(int reason);
    void runThread();
    void removeOwnFile();

    std::string path_;
    MainLoop& loop_;
    const WallClock& clock_;
    /// The only strong reference: tasks that wait in the main loop hold it weakly.
    std::shared_ptr<const OnEvent> onEvent_;
    SystemLog logger_;
    FileDescriptor listener_;
    std::optional<FileIdentity> ownFile_;
    /// A byte in this pipe stops the thread.
    FileDescriptor stopReader_;
    FileDescriptor stopWriter_;
    std::thread thread_;
};

} // namespace vespra
