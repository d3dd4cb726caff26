#include "App/System/linux/DBusHelperConnection.h"

#include "HelperProtocol/linux/InstallationNames.h"

namespace vespra {

namespace {

    QString nextName()
    {
        static int last = 0;
        return QStringLiteral("helper %1").arg(++last);
    }

    QDBusMessage request(const char* method)
    {
        const dbus::Target helper{QString::fromLatin1(installation::busName),
            QString::fromLatin1(installation::objectPath),
            QString::fromLatin1(installation::interface)};
        auto message = helper.method(QString::fromLatin1(method));
        message.setAutoStartService(true);
        return message;
    }

    HelperUnreachable unreachable(const QDBusMessage& error)
    {
        return {error.errorName().toStdString() + " " + error.errorMessage().toStdString()};
    }

    template <class Value> std::expected<Value, HelperUnreachable> value(const QDBusMessage& reply)
    {
        const auto argument = reply.arguments().value(0);
        if (reply.type() != QDBusMessage::ReplyMessage)
            return std::unexpected{unreachable(reply)};
        if (argument.metaType()
            != QMetaType::fromType<std::conditional_t<std::same_as<Value, bool>, bool, qlonglong>>())
            return std::unexpected{HelperUnreachable{"réponse inattendue"}};
        return argument.value<Value>();
    }

    std::expected<HelperRefusal, HelperUnreachable> refusal(const QDBusMessage& reply)
    {
        if (reply.type() == QDBusMessage::ReplyMessage)
            return HelperRefusal{};
        if (reply.errorName() == QLatin1String{installation::refusedError})
            return HelperRefusal{reply.errorMessage().toStdString()};
        return std::unexpected{unreachable(reply)};
    }

} // namespace

DBusHelperConnection::DBusHelperConnection()
    : name_{nextName()}
    , bus_{QDBusConnection::connectToBus(QDBusConnection::SystemBus, name_)}
    , owner_{QString::fromLatin1(installation::busName), bus_, QDBusServiceWatcher::WatchForOwnerChange}
    , busEnd_{bus_,
          {{}, QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local")},
          QStringLiteral("Disconnected"),
          [this](const QDBusMessage&) {
              isBusGone_ = true;
              tellIfOver();
          }}
{
    QObject::connect(&owner_,
        &QDBusServiceWatcher::serviceOwnerChanged,
        [this](const QString&, const QString& before, const QString& after) { ownerChanged(before, after); });
}

DBusHelperConnection::~DBusHelperConnection()
{
    calls_.clear();
    QDBusConnection::disconnectFromBus(name_);
}

template <class Value, class Read>
void DBusHelperConnection::ask(const char* method, HelperReply<Value> reply, Read read)
{
    const int id = ++lastCall_;
    calls_[id] = dbus::call(bus_,
        request(method),
        dbus::untilAnswered,
        [this, id, reply = std::move(reply), read](const QDBusMessage& message) {
            calls_.erase(id);
            // The reply may destroy the connection.
            const auto tell = lifetime_.guard([this] { tellIfOver(); });
            isBusGone_ = isBusGone_ || message.errorName() == QDBusError::errorString(QDBusError::Disconnected);
            reply(read(message));
            tell();
        });
}

/// A new component that replaces the previous one knows nothing of this connection.
void DBusHelperConnection::ownerChanged(const QString& before, const QString& after)
{
    if (left_.isEmpty())
        left_ = before;
    if (left_ == after)
        left_.clear();
    tellIfOver();
}

/// Replies come before the end: a component that quits answers pending requests first, and for one that died the bus
/// does.
void DBusHelperConnection::tellIfOver()
{
    if ((isBusGone_ || !left_.isEmpty()) && calls_.empty())
        notify(onInvalidation);
}

void DBusHelperConnection::protocolVersion(HelperReply<std::int64_t> reply)
{
    ask("ProtocolVersion", std::move(reply), value<std::int64_t>);
}

void DBusHelperConnection::enableClosedLid(HelperReply<HelperRefusal> reply)
{
    ask("EnableClosedLid", std::move(reply), refusal);
}

void DBusHelperConnection::heartbeat(HelperReply<bool> reply) { ask("Heartbeat", std::move(reply), value<bool>); }

void DBusHelperConnection::restoreSleep(HelperReply<HelperRefusal> reply)
{
    ask("RestoreSleep", std::move(reply), refusal);
}

void DBusHelperConnection::sleepNow(HelperReply<HelperRefusal> reply) { ask("SleepNow", std::move(reply), refusal); }

void DBusHelperConnection::shutDown(HelperReply<HelperRefusal> reply) { ask("ShutDown", std::move(reply), refusal); }

std::expected<HelperRefusal, HelperUnreachable> DBusHelperConnection::restoreSleepAndWait(Seconds timeout)
{
    const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(timeout).count();
    return refusal(bus_.call(request("RestoreSleep"), QDBus::Block, static_cast<int>(limit)));
}

} // namespace vespra
