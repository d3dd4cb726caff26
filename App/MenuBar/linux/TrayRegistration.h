#pragma once

#include "App/MenuBar/StatusItem.h"
#include "App/System/linux/DBus.h"

namespace vespra {

/// Has the desktop's trays show the items of this connection: the one there is, and each that comes. Main thread only.
class TrayRegistration {
public:
    /// Nothing is told before the first answer, which comes in a later turn.
    TrayRegistration(const QDBusConnection& bus, std::function<void(StatusItem::Presence)> onPresence);
    TrayRegistration(const TrayRegistration&) = delete;
    TrayRegistration& operator=(const TrayRegistration&) = delete;

private:
    void watcherChanged(bool owned);
    void registerItem();
    void registered(const QDBusMessage& reply);
    void askForHost();

    QDBusConnection bus_;
    std::function<void(StatusItem::Presence)> onPresence_;
    bool isRegistered_ = false;
    dbus::Call registration_, question_;
    dbus::NameWatch watcher_;
    dbus::SignalWatch hostCame_, hostWent_;
};

} // namespace vespra
