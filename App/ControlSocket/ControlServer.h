#pragma once

#include "App/ControlSocket/ControlService.h"
#include "App/System/LocalSocket.h"
#include "Log/SystemLog.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <memory>
#include <string>
#include <vector>

namespace vespra {

/// Lets programs of this user ask and steer the application over a local socket: JSON Lines, a reply for each request,
/// in order. No client is ever waited for: what it sends too fast waits with it, and so do lines that it does not read.
/// Main thread only.
class ControlServer {
public:
    /// Where there are more, the oldest one that waits for nothing gives way; if all wait, no other is served.
    static constexpr std::size_t mostClients = 64;
    /// Requests that one client has answered before it is the others' turn.
    static constexpr int requestsPerTurn = 32;
    /// Bytes that may wait for a client before its next request is looked at.
    static constexpr std::size_t longestBacklog = 65'536;
    /// Who asks for closed-lid mode waits at most so long for its outcome; then how it stands is the answer.
    static constexpr Seconds closedLidLimit = 3s;

    /// Touches nothing yet. `model`, `mainLoop` and `tasks` outlive it.
    ControlServer(AppModel& model, MainLoop& mainLoop, TaskScheduling& tasks, std::string path);
    /// Gives the replies still owed, tells those who wait for the session's end, if it has come, and closes all
    /// connections.
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    /// Makes the directory (0700) and the socket file (0600) and listens. A failure is logged and leaves the
    /// application without this. No other server may use the path.
    void start();

private:
    struct Client;

    void accept(FileDescriptor connection);
    void readLater(Client& client);
    void read(Client& client);
    void refuseLength(Client& client);
    void handle(Client& client, std::string_view line);
    void answer(Client& client, const ControlRequest& request, const JSON& reply);
    void giveOwed(Client& client);
    void watch(Client& client);
    void wait(Client& client);
    void run(Client& client, const ControlRequest& request);
    void release(Client& client);
    void forget(Client& client);

    AppModel& model_;
    MainLoop& mainLoop_;
    TaskScheduling& tasks_;
    std::string path_;
    SystemLog log_;
    ControlService service_;
    LocalSocketServer server_;
    std::vector<std::shared_ptr<Client>> clients_;
};

} // namespace vespra
