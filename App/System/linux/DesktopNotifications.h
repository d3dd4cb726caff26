#pragma once

#include "App/System/linux/DBus.h"
#include "App/System/UserNotificationCenter.h"
#include "Log/SystemLog.h"

#include <map>

namespace vespra {

/// The notification service of the desktop. It is started if need be, by the first notification. It may crash and come
/// back, which clears what is shown.
class DesktopNotifications final : public UserNotificationCenter {
public:
    /// `desktopEntry`: the name of the application's desktop file, without its ending.
    DesktopNotifications(QString application, QString desktopEntry, SystemLog log);
    /// Sends what has been posted and not been sent yet, without buttons. Waits for the bus, at most half a second, but
    /// not for the service.
    ~DesktopNotifications() override;
    DesktopNotifications(const DesktopNotifications&) = delete;
    DesktopNotifications& operator=(const DesktopNotifications&) = delete;

    void setCategories(std::vector<NotificationCategory> categories) override;
    /// No permission is needed here.
    void requestAuthorization() override { }
    void post(const UserNotification& notification) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;

private:
    /// The process that owns the service's name.
    struct Server {
        QString name;
        QStringList capabilities;
    };
    /// A notification that is to be shown.
    struct Order {
        UserNotification notification;
        int failures = 0;
    };
    /// One that is shown, or about to be.
    struct Shown {
        QString server;
        /// The server's number for it; absent until it has answered.
        std::optional<unsigned> id;
        dbus::Call question;
        int number;
    };

    /// What the service tells.
    struct Watches {
        explicit Watches(DesktopNotifications& notifications);
        dbus::NameWatch owner;
        dbus::SignalWatch actionInvoked;
        dbus::SignalWatch closed;
    };

    void deliver();
    void ask();
    void received(const QDBusMessage& reply);
    void send(const Order& order);
    void sent(const Order& order, int number, const QDBusMessage& reply);
    void failed(const QDBusMessage& error, std::vector<Order> orders);
    void ownerChanged(bool owned);
    void remove(const std::string& identifier);

    QDBusMessage notifyMessage(const Server& server, const UserNotification& notification, unsigned replaced) const;
    QStringList buttons(const UserNotification& notification) const;

    void actionInvoked(const QDBusMessage& signal);
    void closed(const QDBusMessage& signal);
    /// Empty if it is none of ours.
    std::string identifier(const QDBusMessage& signal) const;

    QString application_;
    QString desktopEntry_;
    SystemLog log_;
    bool hasLoggedFailure_ = false;
    std::vector<NotificationCategory> categories_;
    std::optional<Server> server_;
    /// The pending question for the server's capabilities.
    dbus::Call question_;
    std::vector<Order> waiting_;
    /// By identifier.
    std::map<std::string, Shown> shown_;
    /// By number: requests whose notification is no longer wanted. It is closed as soon as the server has shown it.
    std::map<int, dbus::Call> unwanted_;
    int lastNumber_ = 0;
    /// None before the first notification: there is nothing to hear of, and watching waits for the bus.
    std::optional<Watches> watches_;
};

} // namespace vespra
