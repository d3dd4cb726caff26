#pragma once

#include "Core/Agents/AgentEvent.h"
#include "HelperProtocol/FileDescriptor.h"

#include <functional>

namespace vespra {

/// The body of the socket server's thread: accepts the connections of `listener`, a listening socket in non-blocking
/// mode, one by one until `stop` becomes readable. Both stay open meanwhile.
class AgentSocketReceiver {
public:
    /// `deliver` takes each event, still with the date that the sender gave it, on the calling thread.
    AgentSocketReceiver(int listener, int stop, std::function<void(AgentEvent)> deliver);

    void run();

private:
    enum class Wait { ready, timedOut, stopped };
    /// Waits until `descriptor` has something to read; a negative descriptor never has. Negative `milliseconds` wait
    /// for ever.
    Wait waitFor(int descriptor, int milliseconds) const;

    /// Empty if there was no connection after all, or if it cannot be accepted now.
    FileDescriptor accept() const;
    void receive(const FileDescriptor& connection) const;
    /// Absent if the server stopped meanwhile.
    std::optional<std::string> readToEnd(int connection) const;

    int listener_;
    int stop_;
    std::function<void(AgentEvent)> deliver_;
};

} // namespace vespra
