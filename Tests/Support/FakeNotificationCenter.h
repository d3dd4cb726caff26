#pragma once

#include "App/System/UserNotificationCenter.h"
#include "Core/Lifetime.h"

#include <algorithm>

namespace vespra {

/// Notifications in memory; the test is the user.
class FakeNotificationCenter final : public UserNotificationCenter {
public:
    void setCategories(std::vector<NotificationCategory> all) override { categories = std::move(all); }
    void requestAuthorization() override { ++questions; }
    void post(const UserNotification& notification) override
    {
        removeDelivered({notification.identifier});
        shown.push_back(notification);
    }
    void removeDelivered(const std::vector<std::string>& identifiers) override
    {
        std::erase_if(shown,
            [&](const auto& each) { return std::ranges::find(identifiers, each.identifier) != identifiers.end(); });
    }
    void respond(const NotificationResponse& response) const { notify(onResponse, response); }

    std::vector<NotificationCategory> categories;
    /// In the order in which they came.
    std::vector<UserNotification> shown;
    /// How often the user was asked.
    int questions = 0;
};

} // namespace vespra
