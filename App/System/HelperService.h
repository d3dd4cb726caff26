#pragma once

#include <expected>
#include <functional>
#include <string>

namespace vespra {

/// What the system says of the privileged component's registration.
enum class HelperServiceStatus { notRegistered, enabled, requiresApproval, notFound, unknown };

/// The component's place in the system. Answers come on the main thread in a later turn, and not after the service has
/// been destroyed. Main thread only.
class HelperService {
public:
    virtual ~HelperService() = default;

    /// May ask the user. Fails with a sentence for the log.
    virtual void registerService(std::function<void(std::expected<void, std::string>)> done) = 0;
    /// Takes it out of the system again; may ask the user. Fails with a sentence for the log.
    virtual void unregisterService(std::function<void(std::expected<void, std::string>)> done) = 0;
    virtual void status(std::function<void(HelperServiceStatus)> answer) = 0;
    /// Takes the user to where the component is approved.
    virtual void openSettings() = 0;

    /// Called when the answer to `status` may have changed; not every system tells.
    std::function<void()> onChange;
};

} // namespace vespra
