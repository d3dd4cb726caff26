#include "App/System/linux/DBus.h"

#include "App/System/linux/BusProbe.h"
#include "Core/Lifetime.h"

#include <QDBusArgument>

namespace vespra::dbus {

using namespace std::chrono_literals;

namespace {

    constexpr auto welcomeLimit = 1000ms;
    /// How long a bus that did not answer is not asked again.
    constexpr auto retryInterval = 10s;

    QDBusConnection noBus() { return QDBusConnection{QStringLiteral("no bus")}; }

    /// Reconnects once the connection has ended; Qt keeps a dead one for ever.
    class LastingConnection {
    public:
        QDBusConnection get()
        {
            if (QDBusConnection{name_}.isConnected())
                return QDBusConnection{name_};
            const auto now = std::chrono::steady_clock::now();
            if (isRefused_ && now < retryAt_)
                return noBus();
            // Qt itself would wait for a bus that hangs.
            isRefused_ = !openBus(sd_bus_open_system, welcomeLimit);
            retryAt_ = now + retryInterval;
            if (isRefused_)
                return noBus();
            QDBusConnection::disconnectFromBus(name_);
            name_ = QStringLiteral("system bus %1").arg(++count_);
            return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name_);
        }

    private:
        QString name_ = QStringLiteral("no bus");
        int count_ = 0;
        bool isRefused_ = false;
        std::chrono::steady_clock::time_point retryAt_;
    };

} // namespace

QDBusConnection systemBus()
{
    static LastingConnection connection;
    return connection.get();
}

QDBusConnection sessionBus()
{
    // Without an address Qt would start a bus of its own on X11; sd-bus does not.
    static const bool answers = openBus(sd_bus_open_user, welcomeLimit) != nullptr;
    return answers ? QDBusConnection::sessionBus() : noBus();
}

QDBusMessage Target::method(const QString& name, const QVariantList& arguments) const
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, name);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

Target bus()
{
    return {QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus")};
}

Call call(const QDBusConnection& bus, const QDBusMessage& message, int timeout,
    std::function<void(const QDBusMessage&)> onReply)
{
    Call pending{new QDBusPendingCallWatcher{bus.asyncCall(message, timeout)}};
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

SignalWatch::SignalWatch(
    QDBusConnection bus, const Target& target, const QString& name, std::function<void(const QDBusMessage&)> onSignal)
    : onSignal_{std::move(onSignal)}
{
    bus.connect(target.service, target.path, target.interface, name, this, SLOT(received(QDBusMessage)));
}

void SignalWatch::received(const QDBusMessage& message) { onSignal_(message); }

namespace {

    Target propertiesOf(const Target& target)
    {
        return {target.service, target.path, QStringLiteral("org.freedesktop.DBus.Properties")};
    }

} // namespace

Properties::Properties(QDBusConnection bus, Target target, std::function<void()> onChange)
    : bus_{std::move(bus)}
    , target_{std::move(target)}
    , onChange_{std::move(onChange)}
    , signal_{bus_,
          propertiesOf(target_),
          QStringLiteral("PropertiesChanged"),
          [this](const QDBusMessage& message) { changed(message); }}
    , owner_{bus_, target_.service, [this](bool owned) { ownerChanged(owned); }}
{
    refresh(firstReadingTimeout);
}

void Properties::await()
{
    const auto onChange = std::exchange(onChange_, nullptr);
    if (pending_)
        pending_->waitForFinished(); // hands over the answer
    onChange_ = onChange;
}

void Properties::refresh(int timeout)
{
    pending_ = call(bus_,
        propertiesOf(target_).method(QStringLiteral("GetAll"), {target_.interface}),
        timeout,
        [this](const QDBusMessage& reply) { replied(reply); });
}

void Properties::ownerChanged(bool owned)
{
    values_.clear();
    areKnown_ = false;
    pending_.reset();
    if (owned)
        refresh();
    else
        onChange_();
}

void Properties::replied(const QDBusMessage& reply)
{
    pending_.reset();
    areKnown_ = reply.type() == QDBusMessage::ReplyMessage;
    values_ = areKnown_ ? qdbus_cast<QVariantMap>(reply.arguments().value(0)) : QVariantMap{};
    notify(onChange_);
}

void Properties::changed(const QDBusMessage& signal)
{
    // (interface, changed properties, names of properties that changed without their value)
    const auto arguments = signal.arguments();
    if (arguments.value(0).toString() != target_.interface)
        return;
    if (!areKnown_ || !qdbus_cast<QStringList>(arguments.value(2)).isEmpty())
        return refresh();
    values_.insert(qdbus_cast<QVariantMap>(arguments.value(1)));
    onChange_();
}

bool isOwned(const QDBusConnection& connection, const QString& service)
{
    if (!connection.isConnected())
        return false;
    const auto reply = connection.call(bus().method(QStringLiteral("NameHasOwner"), {service}), QDBus::Block, 1000);
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
}

} // namespace vespra::dbus
