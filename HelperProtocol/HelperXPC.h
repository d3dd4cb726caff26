#pragma once

// HelperProtocol: what the application shares with the privileged component and the hook tool: their protocol, the
// names of the installation, sockets and processes.

#include "Core/ClosedLid/ClosedLidLease.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>

namespace vespra {

/// What both sides of the conversation with the privileged component have to agree on.
namespace HelperXPC {
    /// The application accepts exactly this version.
    inline constexpr std::int64_t protocolVersion = 2;
    inline constexpr Seconds heartbeatInterval = 10s;
} // namespace HelperXPC

/// Why the component was refused what it was asked for, as a sentence for the log; absent: it did it.
using HelperRefusal = std::optional<std::string>;

/// The component gave no answer: it is not there, broke off, or took too long.
struct HelperUnreachable {
    std::string description;
    bool operator==(const HelperUnreachable&) const = default;
};

/// Called once, on the main thread; on the application's side in a later turn than the request. The component itself
/// always answers with a value: only what lies between can make it unreachable.
template <class Value> using HelperReply = std::function<void(std::expected<Value, HelperUnreachable>)>;

/// The operations of the privileged component, as the application asks for them and the component answers them.
class HelperXPCProtocol {
public:
    virtual ~HelperXPCProtocol() = default;

    virtual void protocolVersion(HelperReply<std::int64_t> reply) = 0;
    /// Notes the original setting in the ledger, disables sleep and starts the caller's lease; again: renews it.
    virtual void enableClosedLid(HelperReply<HelperRefusal> reply) = 0;
    /// Renews the caller's lease. False: the override is not, or no longer, in force for this caller.
    virtual void heartbeat(HelperReply<bool> reply) = 0;
    /// Ends the caller's lease; the last one puts the original setting back and clears the ledger.
    virtual void restoreSleep(HelperReply<HelperRefusal> reply) = 0;
    virtual void sleepNow(HelperReply<HelperRefusal> reply) = 0;
    virtual void shutDown(HelperReply<HelperRefusal> reply) = 0;
};

} // namespace vespra
