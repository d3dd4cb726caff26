#pragma once

#include "App/System/LoginService.h"
#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"
#include "Log/SystemLog.h"

namespace vespra {

/// Whether the application opens when the user logs in. Main thread only.
class LoginItem {
public:
    /// `service` outlives it; null: a preview, which never touches the system.
    explicit LoginItem(LoginService* service);
    LoginItem(const LoginItem&) = delete;
    LoginItem& operator=(const LoginItem&) = delete;

    bool isPreview() const { return !service_; }

    // As of the last `refresh`; false before the first.
    bool isEnabled() const { return isEnabled_.get(); }
    /// Registered, but the user still has to allow it in the system's settings.
    bool requiresApproval() const { return requiresApproval_.get(); }
    void refresh();

    /// Refreshes afterwards, and again once the desktop has asked the user, so `isEnabled` tells whether it worked. A
    /// failure is logged.
    void setEnabled(bool enabled);

    /// Takes the user to where the system asks for the approval.
    void openSystemSettings();

private:
    LoginService* service_;
    SystemLog log_;
    Observed<bool> isEnabled_{false};
    Observed<bool> requiresApproval_{false};
    Lifetime lifetime_;
};

} // namespace vespra
