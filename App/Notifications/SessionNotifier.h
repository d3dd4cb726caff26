#pragma once

#include "App/System/UserNotificationCenter.h"
#include "Core/Lifetime.h"
#include "Core/Session/SessionState.h"

namespace vespra {

/// Tells the user of a session in notifications, and hands on what the user answers. Main thread only.
class SessionNotifier {
public:
    /// Gives `center` its categories and takes its responses; `center` outlives this.
    explicit SessionNotifier(UserNotificationCenter& center);

    /// The user is asked once: at the first call, or before the first notification.
    void requestAuthorizationIfNeeded();

    void postEndingSoon(Instant endsAt);
    void postHeatWarning();
    /// These two take the place of whatever is still shown of the session.
    void postEnded(const SessionEnd& end);
    /// `title` and `body` as the user reads them. `isCancellable`: a button calls the end action off.
    void postAgentsFinished(const std::string& title, const std::string& body, bool isCancellable);
    void postUpdateAvailable(const std::string& version);

    void removeEndingSoon();
    void removeAgentsFinished();
    /// Whatever is still shown of the session.
    void removeOfTheSession();
    void removeUpdateAvailable();

    std::function<void()> onExtend;
    std::function<void()> onCancelForcedAction;
    std::function<void()> onOpenUpdate;

private:
    void post(const UserNotification& notification);
    void receive(const NotificationResponse& response) const;

    UserNotificationCenter& center_;
    bool hasRequestedAuthorization_ = false;
    Lifetime lifetime_;
};

} // namespace vespra
