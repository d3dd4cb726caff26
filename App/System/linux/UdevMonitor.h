#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;
struct udev_monitor;

namespace vespra {

/// Receives the kernel's events for one kind of device. Without udev there are none. Main thread only.
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
