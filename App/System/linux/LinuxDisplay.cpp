#include "App/System/linux/LinuxDisplay.h"

#include "App/System/linux/Desktop.h"
#include "Core/Lifetime.h"

#include <cerrno>
#include <QDBusVariant>

namespace vespra {

namespace {

    constexpr int powerSaveOn = 0, powerSaveOff = 3;
    constexpr auto turningOffFailed = "Extinction de l'écran impossible : ";
    constexpr auto wakingFailed = "Rallumage de l'écran impossible : ";

    dbus::Target mutter()
    {
        return {QStringLiteral("org.gnome.Mutter.DisplayConfig"),
            QStringLiteral("/org/gnome/Mutter/DisplayConfig"),
            QStringLiteral("org.gnome.Mutter.DisplayConfig")};
    }

    dbus::Target powerdevilShortcuts()
    {
        return {QStringLiteral("org.kde.kglobalaccel"),
            QStringLiteral("/component/org_kde_powerdevil"),
            QStringLiteral("org.kde.kglobalaccel.Component")};
    }

    dbus::Target screenSaver()
    {
        return {QStringLiteral("org.freedesktop.ScreenSaver"),
            QStringLiteral("/org/freedesktop/ScreenSaver"),
            QStringLiteral("org.freedesktop.ScreenSaver")};
    }

} // namespace

LinuxDisplay::LinuxDisplay(TaskScheduling& tasks, SystemLog log)
    : tasks_{tasks}
    , log_{std::move(log)}
{
}

LinuxDisplay::Way LinuxDisplay::way()
{
    if (isX11Session())
        return Way::x11;
    return desktop::isCurrent("GNOME") ? Way::gnome : desktop::isCurrent("KDE") ? Way::plasma : Way::none;
}

std::expected<void, std::string> LinuxDisplay::turnOff()
{
    switch (way()) {
    case Way::x11:
        if (auto dpms = X11Dpms::open()) {
            dpms->force(false);
            isOn_ = false;
            return {};
        }
        return std::unexpected{"le serveur X ne gère pas l'alimentation de l'écran"};
    case Way::gnome:
        setGnomePowerSave(powerSaveOff, turningOffFailed);
        return {};
    case Way::plasma:
        send(powerdevilShortcuts().method(QStringLiteral("invokeShortcut"), {QStringLiteral("Turn Off Screen")}),
            turningOffFailed);
        return {};
    case Way::none:
        break;
    }
    return std::unexpected{"ce bureau n'offre aucun moyen de l'éteindre"};
}

std::expected<void, int> LinuxDisplay::wake(const std::string&)
{
    switch (way()) {
    case Way::x11:
        if (auto dpms = X11Dpms::open()) {
            dpms->force(true);
            return {};
        }
        return std::unexpected{ENODEV};
    case Way::gnome:
        setGnomePowerSave(powerSaveOn, wakingFailed);
        return {};
    case Way::plasma:
        send(screenSaver().method(QStringLiteral("SimulateUserActivity")), wakingFailed);
        return {};
    case Way::none:
        break;
    }
    return std::unexpected{ENOTSUP};
}

void LinuxDisplay::setGnomePowerSave(int mode, const char* failure)
{
    const dbus::Target properties{mutter().service, mutter().path, QStringLiteral("org.freedesktop.DBus.Properties")};
    send(properties.method(QStringLiteral("Set"),
             {mutter().interface, QStringLiteral("PowerSaveMode"), QVariant::fromValue(QDBusVariant{mode})}),
        failure);
}

void LinuxDisplay::send(const QDBusMessage& message, const char* failure)
{
    pending_
        = dbus::call(dbus::sessionBus(), message, dbus::readingTimeout, [this, failure](const QDBusMessage& reply) {
              pending_.reset();
              if (reply.type() == QDBusMessage::ErrorMessage)
                  log_.error(failure + reply.errorMessage().toStdString());
          });
}

void LinuxDisplay::setWatchesWaking(bool watches)
{
    poll_.reset();
    watched_.reset();
    gnome_.reset();
    if (!watches)
        return;
    isOn_ = true;
    if (way() == Way::x11) {
        watched_ = X11Dpms::open();
        poll();
    } else if (way() == Way::gnome) {
        gnome_ = std::make_unique<dbus::Properties>(dbus::sessionBus(), mutter(), [this] {
            if (const auto mode = gnome_->get<int>(QStringLiteral("PowerSaveMode")))
                sawDisplay(*mode == powerSaveOn);
        });
    }
}

void LinuxDisplay::poll()
{
    if (!watched_)
        return;
    poll_ = tasks_.schedule(pollInterval, [this] {
        poll();
        sawDisplay(watched_->isOn());
    });
}

void LinuxDisplay::sawDisplay(bool isOn)
{
    if (std::exchange(isOn_, isOn) != isOn && isOn)
        notify(onScreensWake);
}

} // namespace vespra
