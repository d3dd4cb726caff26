#include "App/MenuBar/linux/TrayRegistration.h"

namespace vespra {

namespace {

    using Presence = StatusItem::Presence;

    dbus::Target watcher()
    {
        return {QStringLiteral("org.kde.StatusNotifierWatcher"),
            QStringLiteral("/StatusNotifierWatcher"),
            QStringLiteral("org.kde.StatusNotifierWatcher")};
    }

    /// Of whoever sends it: to name the sender would mean to wait for the bus, and a signal only leads to a question.
    dbus::Target anyWatcher()
    {
        auto target = watcher();
        target.service.clear();
        return target;
    }

    bool isAnswer(const QDBusMessage& reply) { return reply.type() == QDBusMessage::ReplyMessage; }

} // namespace

TrayRegistration::TrayRegistration(const QDBusConnection& bus, std::function<void(Presence)> onPresence)
    : bus_{bus}
    , onPresence_{std::move(onPresence)}
    , watcher_{bus_, watcher().service, [this](bool owned) { watcherChanged(owned); }}
    , hostCame_{bus_,
          anyWatcher(),
          QStringLiteral("StatusNotifierHostRegistered"),
          [this](const QDBusMessage&) { askForHost(); }}
    , hostWent_{bus_, anyWatcher(), QStringLiteral("StatusNotifierHostUnregistered"), [this](const QDBusMessage&) {
                    askForHost();
                }}
{
    registerItem();
}

void TrayRegistration::watcherChanged(bool owned)
{
    isRegistered_ = false;
    registration_.reset();
    question_.reset();
    if (owned)
        registerItem();
    else
        onPresence_(Presence::absent);
}

void TrayRegistration::registerItem()
{
    // The connection's own name: another would have to be asked for first, which sandboxes forbid.
    registration_ = dbus::call(bus_,
        watcher().method(QStringLiteral("RegisterStatusNotifierItem"), {bus_.baseService()}),
        dbus::untilAnswered,
        [this](const QDBusMessage& reply) { registered(reply); });
}

void TrayRegistration::registered(const QDBusMessage& reply)
{
    registration_.reset();
    isRegistered_ = isAnswer(reply);
    if (isRegistered_)
        askForHost();
    else
        onPresence_(Presence::absent);
}

/// A watcher may run without any panel. One that does not say counts as a panel.
void TrayRegistration::askForHost()
{
    if (!isRegistered_)
        return;
    auto properties = watcher();
    properties.interface = QStringLiteral("org.freedesktop.DBus.Properties");
    question_ = dbus::call(bus_,
        properties.method(
            QStringLiteral("Get"), {watcher().interface, QStringLiteral("IsStatusNotifierHostRegistered")}),
        dbus::readingTimeout,
        [this](const QDBusMessage& reply) {
            question_.reset();
            const auto value = reply.arguments().value(0).value<QDBusVariant>().variant();
            const bool hasNone = isAnswer(reply) && value.typeId() == QMetaType::Bool && !value.toBool();
            onPresence_(hasNone ? Presence::absent : Presence::shown);
        });
}

} // namespace vespra
