#include "App/System/linux/UPower.h"

namespace vespra {

namespace {

    dbus::Target daemon()
    {
        return {QStringLiteral("org.freedesktop.UPower"),
            QStringLiteral("/org/freedesktop/UPower"),
            QStringLiteral("org.freedesktop.UPower")};
    }

    /// All batteries of the machine joined into one; those of mice and the like never count.
    dbus::Target displayDevice()
    {
        return {daemon().service,
            QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice"),
            QStringLiteral("org.freedesktop.UPower.Device")};
    }

} // namespace

UPower::UPower()
    : daemon_{dbus::systemBus(), daemon(), [this] { changed(); }}
    , battery_{dbus::systemBus(), displayDevice(), [this] { changed(); }}
{
    // Both questions are on their way: this waits only once.
    daemon_.await();
    battery_.await();
}

void UPower::refresh()
{
    daemon_.refresh();
    battery_.refresh();
}

UPowerReading UPower::reading() const
{
    return {.onBattery = daemon_.get<bool>(QStringLiteral("OnBattery")),
        .deviceType = battery_.get<unsigned>(QStringLiteral("Type")),
        .isPresent = battery_.get<bool>(QStringLiteral("IsPresent")),
        .percentage = battery_.get<double>(QStringLiteral("Percentage"))};
}

std::optional<bool> UPower::isLidClosed() const
{
    if (!daemon_.get<bool>(QStringLiteral("LidIsPresent")).value_or(true))
        return false;
    return daemon_.get<bool>(QStringLiteral("LidIsClosed"));
}

void UPower::changed() const
{
    for (const auto& listener : listeners_)
        listener();
}

} // namespace vespra
