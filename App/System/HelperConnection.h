#pragma once

#include "HelperProtocol/HelperXPC.h"

#include <memory>

namespace vespra {

/// The application's connection to the privileged component. Destroying it ends it: no reply follows, and the component
/// undoes what it did for this connection. Main thread only.
class HelperConnection : public HelperXPCProtocol {
public:
    /// Called in a later turn once the connection is dead, after the replies still owed have come as unreachable. A new
    /// connection may work again.
    std::function<void()> onInvalidation;

    /// The same as `restoreSleep`, but blocks the calling thread until the answer is here or `timeout` has passed.
    virtual std::expected<HelperRefusal, HelperUnreachable> restoreSleepAndWait(Seconds timeout) = 0;
};

/// Never fails: a component that is not there shows in the replies.
using HelperConnector = std::function<std::unique_ptr<HelperConnection>()>;

} // namespace vespra
