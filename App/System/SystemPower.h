#pragma once

#include <expected>
#include <functional>
#include <string>

namespace vespra {

/// Sleep as this user may have it without the privileged component, and without asking anybody: nobody may be there to
/// answer. Main thread only.
class SystemPower {
public:
    virtual ~SystemPower() = default;

    /// Called once, in a later turn; a failure is a sentence for the log.
    using Done = std::function<void(std::expected<void, std::string>)>;
    virtual void sleepNow(Done done) = 0;
};

} // namespace vespra
