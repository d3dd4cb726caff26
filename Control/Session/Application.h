#pragma once

#include "Control/Command.h"
#include "ControlProtocol/ControlClient.h"

#include <functional>

/// The subcommands that ask the running application, and here what they share.
namespace vespra::control {

/// Connects and sends `request`. Absent if no application can be reached: then the reason has been printed and
/// `exitStatus` is set.
std::optional<ControlClient> connected(const ControlRequest& request, int& exitStatus);

/// The same for a request whose reply may take as long as it likes: first the application has to show that it answers.
std::optional<ControlClient> connectedForLong(const ControlRequest& request, int& exitStatus);

/// The exit status for an error, or for a missing reply whose reason `ControlClient::receive` has left in `errno`; the
/// message has been printed. Absent for any other reply.
std::optional<int> failure(const std::optional<JSON>& reply);

/// Prints the state of closed-lid mode if the reply has it, and returns the exit status for that state.
int closedLidStatus(const JSON& reply);

/// Asks once and gives the reply to `use`, unless it is an error. Returns the exit status.
/// Absent `limit`: waits for as long as it takes.
int ask(const ControlRequest& request, const std::function<void(const JSON&)>& use,
    std::optional<Seconds> limit = ControlClient::usualLimit);
/// The same, and prints the reply's message, if it has one.
int ask(const ControlRequest& request, std::optional<Seconds> limit = ControlClient::usualLimit);

} // namespace vespra::control
