#include "App/System/linux/DesktopNotifications.h"

#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"

#include <algorithm>

namespace vespra {

namespace {

    /// The time that the bus itself allows a service to start.
    constexpr int activationTimeout = 25000; // milliseconds
    /// How long notifications with buttons stay: as long as the countdown that they can cancel.
    constexpr int buttonsStay = 60000; // milliseconds
    constexpr int serverDecides = -1;
    constexpr int mostFailures = 2;
    constexpr int leavingTimeout = 500; // milliseconds

    const QString clickAction = QStringLiteral("default");

    dbus::Target service()
    {
        return {QStringLiteral("org.freedesktop.Notifications"),
            QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications")};
    }

    /// The notification object of exactly this server process, not of a successor.
    dbus::Target objectOf(const QString& server)
    {
        auto target = service();
        target.service = server;
        return target;
    }

    void close(const QString& server, unsigned id)
    {
        dbus::sessionBus().send(objectOf(server).method(QStringLiteral("CloseNotification"), {id}));
    }

    auto isFor(const std::string& identifier)
    {
        return [&identifier](const auto& order) { return order.notification.identifier == identifier; };
    }

    QString text(const std::string& string) { return QString::fromStdString(string); }

} // namespace

DesktopNotifications::DesktopNotifications(QString application, QString desktopEntry, SystemLog log)
    : application_{std::move(application)}
    , desktopEntry_{std::move(desktopEntry)}
    , log_{std::move(log)}
{
}

DesktopNotifications::Watches::Watches(DesktopNotifications& notifications)
    : owner{dbus::sessionBus(), service().service, [&notifications](bool owned) { notifications.ownerChanged(owned); }}
    , actionInvoked{dbus::sessionBus(),
          service(),
          QStringLiteral("ActionInvoked"),
          [&notifications](const QDBusMessage& signal) { notifications.actionInvoked(signal); }}
    , closed{dbus::sessionBus(),
          service(),
          QStringLiteral("NotificationClosed"),
          [&notifications](const QDBusMessage& signal) { notifications.closed(signal); }}
{
}

DesktopNotifications::~DesktopNotifications()
{
    // The program may end right after the session whose end it reports.
    const Server unknown{.name = service().service, .capabilities = {}};
    for (const auto& order : waiting_)
        dbus::sessionBus().send(notifyMessage(unknown, order.notification, 0));
    const auto isOnItsWay = [](const auto& each) { return !each.second.id; };
    if (!waiting_.empty() || std::ranges::any_of(shown_, isOnItsWay))
        // The bus answers in order: when this returns, everything sent before has arrived.
        dbus::sessionBus().call(dbus::bus().method(QStringLiteral("GetId")), QDBus::Block, leavingTimeout);
}

void DesktopNotifications::setCategories(std::vector<NotificationCategory> categories)
{
    categories_ = std::move(categories);
}

void DesktopNotifications::post(const UserNotification& notification)
{
    mainThread::check();
    if (!watches_)
        watches_.emplace(*this);
    std::erase_if(waiting_, isFor(notification.identifier));
    waiting_.push_back({.notification = notification});
    deliver();
}

void DesktopNotifications::removeDelivered(const std::vector<std::string>& identifiers)
{
    mainThread::check();
    for (const auto& identifier : identifiers) {
        std::erase_if(waiting_, isFor(identifier));
        remove(identifier);
    }
}

void DesktopNotifications::remove(const std::string& identifier)
{
    auto removed = shown_.extract(identifier);
    if (removed.empty())
        return;
    auto& shown = removed.mapped();
    if (shown.id)
        close(shown.server, *shown.id);
    else
        unwanted_.emplace(shown.number, std::move(shown.question));
}

void DesktopNotifications::deliver()
{
    if (!server_)
        return ask();
    for (const auto& order : std::exchange(waiting_, {}))
        send(order);
}

void DesktopNotifications::ask()
{
    if (question_)
        return;
    auto message = service().method(QStringLiteral("GetCapabilities"));
    message.setAutoStartService(true);
    question_ = dbus::call(
        dbus::sessionBus(), message, activationTimeout, [this](const QDBusMessage& reply) { received(reply); });
}

void DesktopNotifications::received(const QDBusMessage& reply)
{
    question_.reset();
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failed(reply, std::exchange(waiting_, {}));
    server_ = Server{reply.service(), reply.arguments().value(0).toStringList()};
    deliver();
}

void DesktopNotifications::send(const Order& order)
{
    const auto& identifier = order.notification.identifier;
    unsigned replaced = 0;
    const auto old = shown_.find(identifier);
    if (old != shown_.end() && old->second.server == server_->name && old->second.id)
        replaced = *old->second.id;
    else
        remove(identifier);
    const int number = ++lastNumber_;
    auto& shown = shown_[identifier];
    shown = {.server = server_->name, .number = number};
    shown.question = dbus::call(dbus::sessionBus(),
        notifyMessage(*server_, order.notification, replaced),
        dbus::untilAnswered,
        [this, order, number](const QDBusMessage& reply) { sent(order, number, reply); });
}

void DesktopNotifications::sent(const Order& order, int number, const QDBusMessage& reply)
{
    const bool isShown = reply.type() == QDBusMessage::ReplyMessage;
    const auto id = reply.arguments().value(0).toUInt();
    const auto found = shown_.find(order.notification.identifier);
    if (found == shown_.end() || found->second.number != number) {
        unwanted_.erase(number);
        if (isShown)
            close(reply.service(), id);
        return;
    }
    if (!isShown) {
        shown_.erase(found);
        server_.reset();
        return failed(reply, {order});
    }
    hasLoggedFailure_ = false;
    found->second.question.reset();
    found->second.id = id;
}

/// Tries once more: the server may have crashed over the question, and the bus starts it again.
void DesktopNotifications::failed(const QDBusMessage& error, std::vector<Order> orders)
{
    for (auto& order : orders)
        if (std::ranges::any_of(waiting_, isFor(order.notification.identifier)))
            continue; // a newer one takes its place
        else if (++order.failures < mostFailures)
            waiting_.push_back(order);
        else if (!std::exchange(hasLoggedFailure_, true))
            log_.error("Notification impossible : " + error.errorName().toStdString() + " "
                + error.errorMessage().toStdString());
    if (!waiting_.empty())
        ask();
}

void DesktopNotifications::ownerChanged(bool owned)
{
    server_.reset();
    std::erase_if(shown_, [](const auto& each) { return each.second.id.has_value(); });
    if (!owned)
        return;
    question_.reset();
    if (!waiting_.empty())
        ask();
}

QDBusMessage DesktopNotifications::notifyMessage(
    const Server& server, const UserNotification& notification, unsigned replaced) const
{
    const auto& capabilities = server.capabilities;
    const auto body = text(notification.body);
    const auto actions = capabilities.contains(QStringLiteral("actions")) ? buttons(notification) : QStringList{};
    QVariantMap hints{
        {QStringLiteral("desktop-entry"), desktopEntry_},
        {QStringLiteral("urgency"), QVariant::fromValue<uchar>(1)},
    };
    if (capabilities.contains(QStringLiteral("sound")))
        hints[QStringLiteral("sound-name")] = QStringLiteral("message-new-instant");
    constexpr auto icon = ""; // that of the desktop entry
    return objectOf(server.name)
        .method(QStringLiteral("Notify"),
            {application_,
                replaced,
                QString::fromLatin1(icon),
                text(notification.title),
                capabilities.contains(QStringLiteral("body-markup")) ? body.toHtmlEscaped() : body,
                actions,
                hints,
                actions.isEmpty() ? serverDecides : buttonsStay});
}

/// Each button's key and title.
QStringList DesktopNotifications::buttons(const UserNotification& notification) const
{
    QStringList buttons;
    const auto category = std::ranges::find(categories_, notification.category, &NotificationCategory::identifier);
    if (category != categories_.end())
        for (const auto& action : category->actions)
            buttons << text(action.identifier) << text(action.title);
    if (!notification.clickTitle.empty())
        buttons << clickAction << text(notification.clickTitle);
    return buttons;
}

std::string DesktopNotifications::identifier(const QDBusMessage& signal) const
{
    const auto id = signal.arguments().value(0).toUInt();
    const auto found = std::ranges::find_if(shown_, [&](const auto& each) { return each.second.id == id; });
    return found == shown_.end() ? std::string{} : found->first;
}

void DesktopNotifications::actionInvoked(const QDBusMessage& signal)
{
    const auto notification = identifier(signal);
    const auto action = signal.arguments().value(1).toString();
    if (!notification.empty())
        notify(onResponse,
            NotificationResponse{notification, action == clickAction ? std::string{} : action.toStdString()});
}

void DesktopNotifications::closed(const QDBusMessage& signal) { shown_.erase(identifier(signal)); }

} // namespace vespra
