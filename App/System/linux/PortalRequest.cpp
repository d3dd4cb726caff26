#include "App/System/linux/PortalRequest.h"

#include <QDBusArgument>

namespace vespra {

namespace {

    /// Known before the call, so that no response is missed.
    dbus::Target requestObject(const QString& token)
    {
        const auto sender = dbus::sessionBus().baseService().mid(1).replace(u'.', u'_');
        auto target = portal(QStringLiteral("org.freedesktop.portal.Request"));
        target.path += QStringLiteral("/request/") + sender + u'/' + token;
        return target;
    }

    PortalRequest::Response response(const QDBusMessage& signal)
    {
        constexpr unsigned done = 0;
        if (signal.arguments().value(0).toUInt() != done)
            return {};
        return qdbus_cast<QVariantMap>(signal.arguments().value(1));
    }

} // namespace

dbus::Target portal(const QString& interface)
{
    return {
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"), interface};
}

PortalRequest::PortalRequest(const QString& interface, const QString& method, QVariantList arguments,
    QVariantMap options, std::function<void(const Response&)> onResponse)
    : PortalRequest{newToken(), interface, method, std::move(arguments), std::move(options), std::move(onResponse)}
{
}

PortalRequest::PortalRequest(const QString& token, const QString& interface, const QString& method,
    QVariantList arguments, QVariantMap options, std::function<void(const Response&)> onResponse)
    : response_{dbus::sessionBus(),
          requestObject(token),
          QStringLiteral("Response"),
          [onResponse](const QDBusMessage& signal) { onResponse(response(signal)); }}
{
    options.insert(QStringLiteral("handle_token"), token);
    arguments << options;
    call_ = dbus::call(dbus::sessionBus(),
        portal(interface).method(method, arguments),
        dbus::readingTimeout,
        [onResponse](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ReplyMessage)
                onResponse({});
        });
}

QString PortalRequest::newToken()
{
    static int count = 0;
    return QStringLiteral("vespra%1").arg(++count);
}

} // namespace vespra
