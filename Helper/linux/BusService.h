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

    /// Takes the calls and the name; from here on clients can come.
    HelperResult publish();
    /// Gives the name up: the next call starts another daemon. False if calls have come meanwhile; then it takes the
    /// name back.
    bool withdraw();

    /// Told of every request.
    std::function<void()> onRequest;

private:
    struct Client;
    struct Methods;

    /// Absent if the caller has gone already.
    HelperXPCProtocol* client(const char* name);
    HelperResult takeName();

    sd_bus& bus_;
    HelperDaemon& daemon_;
    BusSlot object_;
    std::map<std::string, std::unique_ptr<Client>> clients_;
    int requests_ = 0;
};

} // namespace vespra
