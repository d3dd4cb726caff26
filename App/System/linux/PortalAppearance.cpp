#include "App/System/linux/PortalAppearance.h"

#include "App/System/linux/PortalRequest.h"

#include <QDBusArgument>

namespace vespra {

namespace {

    /// Settings by their names, of each namespace.
    using Settings = QMap<QString, QVariantMap>;

    dbus::Target settings() { return portal(QStringLiteral("org.freedesktop.portal.Settings")); }

    QString everyDesktops() { return QStringLiteral("org.freedesktop.appearance"); }
    QString gnomes() { return QStringLiteral("org.gnome.desktop.interface"); }

    Appearance appearance(const Settings& all)
    {
        // Each is a number of which one means yes; 0 is no preference.
        const auto chosen = all.value(everyDesktops());
        const auto is
            = [&](const char* name, unsigned value) { return chosen.value(QLatin1String{name}).toUInt() == value; };
        const auto animates = all.value(gnomes()).value(QStringLiteral("enable-animations"), true).toBool();
        return {
            .isDark = is("color-scheme", 1),
            .hasHighContrast = is("contrast", 1),
            // Older portals know of motion by GNOME's setting alone.
            .reducesMotion = is("reduced-motion", 1) || !animates,
        };
    }

} // namespace

PortalAppearance::PortalAppearance()
    : signal_{dbus::sessionBus(),
          settings(),
          QStringLiteral("SettingChanged"),
          [this](const QDBusMessage&) { refresh(); }}
    , owner_{dbus::sessionBus(), settings().service, [this](bool) { refresh(); }}
{
    refresh();
}

void PortalAppearance::refresh()
{
    const QStringList namespaces{everyDesktops(), gnomes()};
    pending_ = dbus::call(dbus::sessionBus(),
        settings().method(QStringLiteral("ReadAll"), {namespaces}),
        dbus::readingTimeout,
        [this](const QDBusMessage& reply) { replied(reply); });
}

void PortalAppearance::replied(const QDBusMessage& reply)
{
    pending_.reset();
    update(appearance(qdbus_cast<Settings>(reply.arguments().value(0))));
}

} // namespace vespra
