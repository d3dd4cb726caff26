#pragma once

#include "Helper/HelperDaemon.h"
#include "Helper/linux/SystemBus.h"

#include <map>

namespace vespra {

/// The daemon on the system bus: a session of it for each connection that has called, until that goes.
class BusService {
public:
    BusService(sd_bus& bus, HelperDaemon& daemon);
    /// Ends the clients' sessions.
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    /// Takes the daemon's name, which one process alone can have: to be called before anything else is touched. Calls
    /// wait for `publish` and the loop.
    static HelperResult takeName(sd_bus& bus);
    /// Takes the calls.
    HelperResult publish();
    /// Gives the name up: the next call starts another daemon. False if calls have come meanwhile; then it takes the
    /// name back. If it cannot, for another has been started by now, those who called are told to call again.
    bool withdraw();

    /// Called for every request.
    std::function<void()> onRequest;

private:
    struct Client;
    struct Methods;
    struct WaitingCall;

    /// Absent if the caller has gone already.
    HelperXPCProtocol* client(const char* name);

    sd_bus& bus_;
    HelperDaemon& daemon_;
    BusSlot object_;
    std::map<std::string, std::unique_ptr<Client>> clients_;
    /// The calls that have come while the name is being given up, and what serves them; absent at other times.
    std::optional<std::vector<WaitingCall>> waiting_;
};

} // namespace vespra
