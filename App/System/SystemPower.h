#pragma once

#include <expected>
#include <functional>
#include <string>

namespace vespra {

/// Sleep and shutdown as far as this user is allowed them, without the privileged component. Main thread only.
class SystemPower {
public:
    virtual ~SystemPower() = default;

    /// Called once, in a later turn; a failure is a sentence for the log.
    using Done = std::function<void(std::expected<void, std::string>)>;
    virtual void sleepNow(Done done) = 0;
    /// Fails where the system does not allow users to shut down.
    virtual void shutDown(Done done) = 0;
};

} // namespace vespra
