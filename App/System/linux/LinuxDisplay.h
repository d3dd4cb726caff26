#pragma once

#include "App/System/DisplayControl.h"
#include "App/System/linux/DBus.h"
#include "App/System/linux/X11.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Log/SystemLog.h"

namespace vespra {

/// Turns the display off the way that the desktop has for it: X11's DPMS, else GNOME's or Plasma's own.
class LinuxDisplay final : public DisplayControl {
public:
    LinuxDisplay(TaskScheduling& tasks, SystemLog log);

    std::expected<void, std::string> turnOff() override;
    std::expected<void, int> wake(const std::string& name) override;
    void setWatchesWaking(bool watches) override;

private:
    enum class Way { none, x11, gnome, plasma };

    /// An X server tells of no change of its displays' power.
    static constexpr Seconds pollInterval = 2s;

    static Way way();
    void setGnomePowerSave(int mode, const char* failure);
    void send(const QDBusMessage& message, const char* failure);
    void poll();
    void sawDisplay(bool isOn);

    TaskScheduling& tasks_;
    SystemLog log_;
    bool isOn_ = true;
    dbus::Call pending_;
    std::unique_ptr<dbus::Properties> gnome_;
    std::optional<X11Dpms> watched_;
    std::unique_ptr<ScheduledTask> poll_;
};

} // namespace vespra
