#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QVariantMap>

/// Calls and signals of the buses. Nothing here waits, but for what says so. Main thread only.
namespace vespra::dbus {

/// The process's connection to the system bus, or another one once the bus has ended that; `isConnected` is false if
/// there is no bus, or none that answers within one second.
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

/// The bus itself.
Target bus();

/// How long an answer may take. A call that acquires something must not give up: it would never learn what it was
/// given.
constexpr int untilAnswered = std::numeric_limits<int>::max();
constexpr int readingTimeout = 5000; // milliseconds
/// For readings that the start of the program waits for.
constexpr int firstReadingTimeout = 800; // milliseconds

/// Sends `message` and hands over the answer, or the error, in a later turn. Starts no service.
[[nodiscard]] Call call(const QDBusConnection& bus, const QDBusMessage& message, int timeout,
    std::function<void(const QDBusMessage&)> onReply);

/// Follows who owns `service`: calls back with whether it is owned, whenever that changes hands.
class NameWatch {
public:
    NameWatch(const QDBusConnection& bus, const QString& service, std::function<void(bool owned)> onOwnerChange);

private:
    QDBusServiceWatcher watcher_;
};

/// Receives one signal of an object, whoever owns its service.
class SignalWatch final : public QObject {
    Q_OBJECT

public:
    SignalWatch(QDBusConnection bus, const Target& target, const QString& name,
        std::function<void(const QDBusMessage&)> onSignal);

private:
    Q_SLOT void received(const QDBusMessage& message);

    std::function<void(const QDBusMessage&)> onSignal_;
};

/// The properties of an object's interface, kept up to date. While nobody owns the service, or it does not answer,
/// there are none.
class Properties {
public:
    /// Asks for the properties and goes on.
    Properties(QDBusConnection bus, Target target, std::function<void()> onChange);

    /// Waits for the first answer, at most 800 ms from construction on. `onChange` is not called for it.
    void await();
    /// Asks for all of them again.
    void refresh(int timeout = readingTimeout);

    bool areKnown() const { return areKnown_; }
    /// Absent if there is no such property or it is not of this type.
    template <class Value> std::optional<Value> get(const QString& name) const
    {
        const auto value = values_.value(name);
        return value.metaType() == QMetaType::fromType<Value>() ? std::optional{value.value<Value>()} : std::nullopt;
    }

private:
    void ownerChanged(bool owned);
    void replied(const QDBusMessage& reply);
    void changed(const QDBusMessage& signal);

    QDBusConnection bus_;
    Target target_;
    std::function<void()> onChange_;
    QVariantMap values_;
    bool areKnown_ = false;
    Call pending_;
    SignalWatch signal_;
    NameWatch owner_;
};

/// Whether `service` is owned; waits for the bus, at most one second, and then says no.
bool isOwned(const QDBusConnection& connection, const QString& service);

} // namespace vespra::dbus
