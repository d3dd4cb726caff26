#pragma once

#include "Control/Command.h"
#include "ControlProtocol/ControlClient.h"

#include <functional>

/// What the commands share that ask the running application.
namespace vespra::control {

/// Connects and sends `request`. Absent: no application can be reached; why has been said and `exitStatus` set.
std::optional<ControlClient> connected(const ControlRequest& request, int& exitStatus);

/// The exit status for a reply that is an error, whose message has been said, or that never came, which `errno` tells
/// as `ControlClient::receive` has left it; absent for any other.
std::optional<int> failure(const std::optional<JSON>& reply);

/// Says how closed-lid mode stands if the reply tells. Returns the exit status for that.
int closedLidStatus(const JSON& reply);

/// Asks once and gives the reply to `use`, unless it is an error. Returns the exit status.
/// Absent `limit`: waits for as long as it takes.
int ask(const ControlRequest& request, const std::function<void(const JSON&)>& use,
    std::optional<Seconds> limit = ControlClient::usualLimit);
/// The same, and prints the reply's message, if it has one.
int ask(const ControlRequest& request, std::optional<Seconds> limit = ControlClient::usualLimit);

} // namespace vespra::control
