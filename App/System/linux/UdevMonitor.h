#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;
struct udev_monitor;

namespace vespra {

/// Hears the kernel's events of one kind of device. Without udev it hears nothing. Main thread only.
class UdevMonitor {
public:
    /// `subsystem` such as "drm".
    UdevMonitor(const char* subsystem, std::function<void()> onEvent);
    ~UdevMonitor();

private:
    void drain();

    std::function<void()> onEvent_;
    udev_monitor* monitor_ = nullptr;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vespra
