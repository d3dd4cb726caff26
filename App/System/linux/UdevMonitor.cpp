#include "App/System/linux/UdevMonitor.h"

#include <libudev.h>
#include <QSocketNotifier>

namespace vespra {

UdevMonitor::UdevMonitor(const char* subsystem, std::function<void()> onEvent)
    : onEvent_{std::move(onEvent)}
{
    auto* context = udev_new();
    if (!context)
        return;
    monitor_ = udev_monitor_new_from_netlink(context, "udev");
    udev_unref(context); // the monitor keeps it
    if (!monitor_)
        return;
    udev_monitor_filter_add_match_subsystem_devtype(monitor_, subsystem, nullptr);
    if (udev_monitor_enable_receiving(monitor_) < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(monitor_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { drain(); });
}

UdevMonitor::~UdevMonitor()
{
    notifier_.reset();
    if (monitor_)
        udev_monitor_unref(monitor_);
}

/// The contents of an event are ignored: the listener reads the device's files.
void UdevMonitor::drain()
{
    while (auto* device = udev_monitor_receive_device(monitor_))
        udev_device_unref(device);
    onEvent_();
}

} // namespace vespra
