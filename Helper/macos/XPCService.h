#pragma once

#include "Helper/HelperDaemon.h"

namespace vespra {

/// Serves the daemon's Mach service on the main queue, to programs with the application's signature alone. The daemon
/// outlives it. `onRequest` is told of every request.
class XPCService {
public:
    XPCService(HelperDaemon& daemon, std::function<void()> onRequest);
    ~XPCService();
    XPCService(const XPCService&) = delete;
    XPCService& operator=(const XPCService&) = delete;

private:
    struct Listener;
    std::unique_ptr<Listener> listener_;
};

} // namespace vespra
