#include "App/System/linux/DBus.h"

#include <QFile>

namespace vespra::dbus {

QDBusConnection systemBus() { return QDBusConnection::systemBus(); }

QDBusConnection sessionBus()
{
    // Without an address the library would start a bus of its own on X11.
    const auto runtimeDirectory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        && (runtimeDirectory.isEmpty() || !QFile::exists(runtimeDirectory + QStringLiteral("/bus"))))
        return QDBusConnection{QStringLiteral("no session bus")};
    return QDBusConnection::sessionBus();
}

QDBusMessage Target::method(const QString& name, const QVariantList& arguments) const
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, name);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

Call call(const QDBusConnection& bus, const QDBusMessage& message, std::function<void(const QDBusMessage&)> onReply)
{
    Call pending{new QDBusPendingCallWatcher{bus.asyncCall(message)}};
    QObject::connect(pending.get(),
        &QDBusPendingCallWatcher::finished,
        [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
            // Work on copies: the callback may drop the handle.
            const auto reply = finished->reply();
            const auto callback = onReply;
            callback(reply);
        });
    return pending;
}

NameWatch::NameWatch(const QDBusConnection& bus, const QString& service, std::function<void(bool owned)> onOwnerChange)
    : watcher_{service, bus, QDBusServiceWatcher::WatchForOwnerChange}
{
    QObject::connect(&watcher_,
        &QDBusServiceWatcher::serviceOwnerChanged,
        [onOwnerChange = std::move(onOwnerChange)](
            const QString&, const QString&, const QString& newOwner) { onOwnerChange(!newOwner.isEmpty()); });
}

bool isOwned(const QDBusConnection& bus, const QString& service)
{
    if (!bus.isConnected())
        return false;
    const Target daemon{QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus")};
    const auto reply = bus.call(daemon.method(QStringLiteral("NameHasOwner"), {service}), QDBus::Block, 1000);
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
}

} // namespace vespra::dbus
