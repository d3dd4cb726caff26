#pragma once

#include "App/System/linux/DBus.h"

#include <optional>

namespace vespra {

/// An interface of the desktop's portal.
dbus::Target portal(const QString& interface);

/// Something that the portal may ask the user about before it responds. Destroying it drops the response, not the
/// request.
class PortalRequest {
public:
    /// What came of it; absent where the portal has no such method, and where it or the user refused.
    using Response = std::optional<QVariantMap>;

    /// Calls `method` of `interface` with `arguments` and then `options`, and goes on. `onResponse` is called once in a
    /// later turn, after however long the user takes, and must not destroy the request.
    PortalRequest(const QString& interface, const QString& method, QVariantList arguments, QVariantMap options,
        std::function<void(const Response&)> onResponse);

    /// A token that no other request of this process has.
    static QString newToken();

private:
    PortalRequest(const QString& token, const QString& interface, const QString& method, QVariantList arguments,
        QVariantMap options, std::function<void(const Response&)> onResponse);

    dbus::SignalWatch response_;
    dbus::Call call_;
};

} // namespace vespra
