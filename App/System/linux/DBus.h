#pragma once

#include <functional>
#include <memory>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

/// Calls and signals of the buses. Nothing here waits, but for what says so. Main thread only.
namespace vespra::dbus {

/// The process's connection to the system bus; `isConnected` is false if there is none.
QDBusConnection systemBus();
/// The same of the user's session. Never starts a bus.
QDBusConnection sessionBus();

struct DeleteLater {
    void operator()(QObject* object) const
    {
        object->disconnect();
        object->deleteLater();
    }
};

/// A call on its way; without the handle its answer is dropped, and descriptors in it are closed.
using Call = std::unique_ptr<QDBusPendingCallWatcher, DeleteLater>;

/// An object's interface.
struct Target {
    QString service;
    QString path;
    QString interface;

    QDBusMessage method(const QString& name, const QVariantList& arguments = {}) const;
};

/// Sends `message` and hands over the answer, or the error, in a later turn. Starts no service.
[[nodiscard]] Call call(
    const QDBusConnection& bus, const QDBusMessage& message, std::function<void(const QDBusMessage&)> onReply);

/// Follows who owns `service`: calls back with whether it is owned, whenever that changes hands.
class NameWatch {
public:
    NameWatch(const QDBusConnection& bus, const QString& service, std::function<void(bool owned)> onOwnerChange);

private:
    QDBusServiceWatcher watcher_;
};

/// Whether `service` is owned; waits for the bus, at most one second, and then says no.
bool isOwned(const QDBusConnection& bus, const QString& service);

} // namespace vespra::dbus
