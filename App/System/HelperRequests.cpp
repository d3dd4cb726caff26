#include "App/System/HelperRequests.h"

namespace vespra {

HelperRequests::HelperRequests(HelperConnector connect, TaskScheduling& tasks, MainLoop& mainLoop)
    : connect_{std::move(connect)}
    , tasks_{tasks}
    , mainLoop_{mainLoop}
{
}

HelperConnection& HelperRequests::connection()
{
    if (!connection_) {
        connection_ = connect_();
        connection_->onInvalidation = lifetime_.guard([this] { notify(onLost); });
    }
    return *connection_;
}

void HelperRequests::drop(const std::string& reason)
{
    if (connection_) {
        connection_->onInvalidation = nullptr;
        // Destroyed in a later turn, since it may be the caller.
        mainLoop_.post([ended = std::shared_ptr<HelperConnection>{std::move(connection_)}] { });
    }
    for (const auto& request : std::exchange(requests_, {}))
        request->giveUp(HelperUnreachable{reason});
}

void HelperRequests::limitWait(const std::shared_ptr<Request>& request, Seconds limit)
{
    const auto due = tasks_.continuousNow() + limit;
    request->limit = tasks_.schedule(limit, lifetime_.guard([this, limit, due, waiting = std::weak_ptr{request}] {
        const auto owed = waiting.lock();
        if (owed && tasks_.continuousNow() - due > lateness)
            limitWait(owed, limit);
        else
            notify(onSilent);
    }));
}

} // namespace vespra
