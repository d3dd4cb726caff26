#include "App/Notifications/SessionNotifier.h"

#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "Core/Scheduling/MainThread.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    namespace notification {
        constexpr auto endingSoon = "session.endingSoon";
        constexpr auto heatWarning = "session.heatWarning";
        constexpr auto ended = "session.ended";
        constexpr auto agentsFinished = "agents.finished";
        constexpr auto updateAvailable = "updates.available";
    } // namespace notification

    namespace category {
        constexpr auto endingSoon = "session.endingSoon.category";
        constexpr auto forcedAction = "agents.forcedAction.category";
    } // namespace category

    namespace action {
        constexpr auto extend = "session.extend";
        constexpr auto cancelForcedAction = "agents.cancelForcedAction";
    } // namespace action

    std::vector<NotificationCategory> categories()
    {
        return {{category::endingSoon, {{action::extend, localized("+15 min")}}},
            {category::forcedAction, {{action::cancelForcedAction, localized("Cancel")}}}};
    }

    /// All that a session may have left on the screen: none of it holds once the session is over.
    std::vector<std::string> ofTheSession()
    {
        return {notification::endingSoon, notification::heatWarning, notification::ended, notification::agentsFinished};
    }

} // namespace

SessionNotifier::SessionNotifier(UserNotificationCenter& center)
    : center_{center}
{
    center_.onResponse = lifetime_.guard([this](const NotificationResponse& response) { receive(response); });
    center_.setCategories(categories());
}

void SessionNotifier::requestAuthorizationIfNeeded()
{
    mainThread::check();
    if (!std::exchange(hasRequestedAuthorization_, true))
        center_.requestAuthorization();
}

void SessionNotifier::post(const UserNotification& notification)
{
    requestAuthorizationIfNeeded();
    center_.post(notification);
}

void SessionNotifier::postEndingSoon(Instant endsAt)
{
    post({.identifier = notification::endingSoon,
        .title = localized("5 minutes left"),
        .body = localized("The session ends at %1.", {timeText(endsAt)}),
        .category = category::endingSoon,
        .clickTitle = {}});
}

void SessionNotifier::postHeatWarning()
{
    post({.identifier = notification::heatWarning,
        .title = localized("Your Mac is running hot"),
        .body = localized("The session continues. Make sure it has room to breathe."),
        .category = {},
        .clickTitle = {}});
}

void SessionNotifier::postEnded(const SessionEnd& end)
{
    center_.removeDelivered(ofTheSession());
    post({.identifier = notification::ended,
        .title = notificationTitle(end.reason),
        .body = notificationBody(end.reason),
        .category = {},
        .clickTitle = {}});
}

void SessionNotifier::postAgentsFinished(const std::string& title, const std::string& body, bool isCancellable)
{
    center_.removeDelivered(ofTheSession());
    post({.identifier = notification::agentsFinished,
        .title = title,
        .body = body,
        .category = isCancellable ? category::forcedAction : "",
        .clickTitle = {}});
}

void SessionNotifier::postUpdateAvailable(const std::string& version)
{
    post({.identifier = notification::updateAvailable,
        .title = localized("%1 %2 is available", {Brand::appName(), version}),
        .body = localized("Click to see what's new and install it."),
        .category = {},
        .clickTitle = localized("Show")});
}

void SessionNotifier::removeEndingSoon() { center_.removeDelivered({notification::endingSoon}); }

void SessionNotifier::removeAgentsFinished() { center_.removeDelivered({notification::agentsFinished}); }

void SessionNotifier::removeOfTheSession() { center_.removeDelivered(ofTheSession()); }

void SessionNotifier::removeUpdateAvailable() { center_.removeDelivered({notification::updateAvailable}); }

void SessionNotifier::receive(const NotificationResponse& response) const
{
    mainThread::check();
    if (response.action == action::extend)
        notify(onExtend);
    else if (response.action == action::cancelForcedAction)
        notify(onCancelForcedAction);
    else if (response.notification == notification::updateAvailable)
        notify(onOpenUpdate);
}

} // namespace vespra
