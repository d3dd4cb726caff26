#pragma once

// App/ControlSocket: answers other programs of the user: ControlServer speaks to sockets, ControlService acts on the
// model.

#include "App/ControlSocket/ControlService.h"
#include "App/System/LocalSocket.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Log/SystemLog.h"

#include <memory>
#include <string>
#include <vector>

namespace vespra {

/// Lets programs of this user query and steer the application over a local socket: JSON Lines, one reply per request,
/// in order. Never blocks on a client: requests that come too fast stay in its socket, and so does the rest while it
/// does not read its replies. A request whose client has closed the connection before its turn is not carried out: the
/// client may have told its user that nothing answers. Main thread only.
class ControlServer {
public:
    /// Beyond this number the oldest idle connection is closed; if none is idle, the new one is refused.
    static constexpr std::size_t mostClients = 64;
    /// Requests of one client that are answered before the others get their turn.
    static constexpr int requestsPerTurn = 32;
    /// Unsent bytes above which a client's next request is not read.
    static constexpr std::size_t longestBacklog = 65'536;
    /// How long a reply waits for the outcome of closed-lid mode; after that it tells the state so far.
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
