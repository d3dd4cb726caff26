#pragma once

#include "App/System/HelperConnection.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <optional>
#include <vector>

namespace vespra {

/// What is asked of the privileged component, over one connection at a time. Every request is answered exactly once: by
/// the component, or as unreachable. Main thread only.
class HelperRequests {
public:
    /// Something noticed this much too late means that the computer slept over it.
    static constexpr Seconds lateness = 3s;

    /// Both outlive it.
    HelperRequests(HelperConnector connect, TaskScheduling& tasks, MainLoop& mainLoop);
    HelperRequests(const HelperRequests&) = delete;
    HelperRequests& operator=(const HelperRequests&) = delete;

    /// Called when the connection has ended by itself, and when a request was not answered within its limit; the owner
    /// is to call `drop`.
    std::function<void()> onLost;
    std::function<void()> onSilent;

    /// The connection, which is made when it is first needed.
    HelperConnection& connection();
    /// Sends one request. `handle` gets the reply, or unreachable once the connection has been dropped. A limit that
    /// runs out while the computer sleeps begins anew.
    template <class Value, class Handle>
    void send(void (HelperXPCProtocol::*operation)(HelperReply<Value>), Seconds limit, Handle handle);
    /// Ends the connection; every reply that is still owed comes now, as unreachable for `reason`.
    void drop(const std::string& reason);

private:
    /// A request whose reply is still owed.
    struct Request {
        std::function<void(const HelperUnreachable&)> giveUp;
        std::unique_ptr<ScheduledTask> limit;
    };

    void limitWait(const std::shared_ptr<Request>& request, Seconds limit);

    HelperConnector connect_;
    TaskScheduling& tasks_;
    MainLoop& mainLoop_;
    std::unique_ptr<HelperConnection> connection_;
    std::vector<std::shared_ptr<Request>> requests_;
    Lifetime lifetime_;
};

template <class Value, class Handle>
void HelperRequests::send(void (HelperXPCProtocol::*operation)(HelperReply<Value>), Seconds limit, Handle handle)
{
    const auto request = std::make_shared<Request>();
    request->giveUp = [handle](const HelperUnreachable& error) { handle(std::unexpected{error}); };
    limitWait(request, limit);
    requests_.push_back(request);
    auto& line = connection();
    (line.*operation)(lifetime_.guard([this, handle, owed = std::weak_ptr{request}](const auto& reply) {
        if (const auto answered = owed.lock(); answered && std::erase(requests_, answered) > 0)
            handle(reply);
    }));
}

} // namespace vespra
