#pragma once

#include <expected>
#include <functional>
#include <string>

namespace vespra {

/// What the system says of the application's place among the login items.
enum class LoginServiceStatus {
    notRegistered,
    enabled,
    /// Registered, but the user still has to allow it in the system's settings.
    requiresApproval,
};

/// The login items of this user. Main thread only.
class LoginService {
public:
    virtual ~LoginService() = default;

    virtual LoginServiceStatus status() const = 0;
    /// Fails with a sentence for the log.
    virtual std::expected<void, std::string> registerApplication() = 0;
    virtual std::expected<void, std::string> unregisterApplication() = 0;
    /// Takes the user to where the application is allowed. Nothing on a system that allows all.
    virtual void openSettings() { }

    /// The status has changed since, as where the desktop asks the user first. Empty while nobody listens.
    std::function<void()> onChange;
};

} // namespace vespra
