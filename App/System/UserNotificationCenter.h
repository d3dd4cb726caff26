#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vespra {

/// A button of a notification.
struct NotificationAction {
    std::string identifier;
    std::string title;
    bool operator==(const NotificationAction&) const = default;
};

/// A kind of notification with buttons of its own.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationAction> actions;
    bool operator==(const NotificationCategory&) const = default;
};

/// A notification; its texts are in the language of the user.
struct UserNotification {
    /// Replaces a notification that is shown under the same identifier.
    std::string identifier;
    std::string title;
    std::string body;
    /// Empty: no buttons.
    std::string category;
    /// What a click on the notification itself does, in words, for systems that make a button of it. Empty: nothing.
    std::string clickTitle;
    bool operator==(const UserNotification&) const = default;
};

/// What the user did with a notification.
struct NotificationResponse {
    std::string notification;
    /// The action's identifier; empty when the notification itself was clicked.
    std::string action;
    bool operator==(const NotificationResponse&) const = default;
};

/// Where the user is told of something while no window is open. Nothing here waits for the system. Main thread only.
class UserNotificationCenter {
public:
    virtual ~UserNotificationCenter() = default;

    /// Replaces all categories; to be called before the first notification.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;
    /// Asks the user for permission to show alerts with a sound, where the system requires that. To be called before
    /// the first notification, which then waits for the answer.
    virtual void requestAuthorization() = 0;
    /// Shows it at once, with the system's default sound, also while the application is in front. A failure is logged.
    virtual void post(const UserNotification& notification) = 0;
    /// Takes back those that are still shown.
    virtual void removeDelivered(const std::vector<std::string>& identifiers) = 0;

    std::function<void(const NotificationResponse&)> onResponse;
};

} // namespace vespra
