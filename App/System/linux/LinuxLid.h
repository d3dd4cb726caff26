#pragma once

#include "App/System/LidMonitoring.h"
#include "App/System/linux/UdevMonitor.h"
#include "App/System/linux/UPower.h"
#include "App/System/Reading.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <filesystem>

namespace vespra {

/// The lid as UPower sees it, or, while it does not answer, as logind does; the displays as the kernel does.
class LinuxLid final : public LidMonitoring {
public:
    LinuxLid(std::shared_ptr<UPower> upower, TaskScheduling& tasks, std::filesystem::path sysfs);

    bool isClosedWithoutExternalDisplay() const override { return reading_.value(); }
    bool isLidClosed() const override;
    void sessionRuns(bool runs);
    void refresh();

private:
    /// logind tells of no change of the lid.
    static constexpr Seconds pollInterval = 5s;

    void update();
    void displaysChanged();
    void followLogind();

    std::shared_ptr<UPower> upower_;
    TaskScheduling& tasks_;
    std::filesystem::path sysfs_;
    dbus::Properties logind_;
    Reading<bool> reading_;
    UdevMonitor displays_;
    /// The displays of a dock come and go a few times before they settle.
    std::unique_ptr<ScheduledTask> secondLook_;
    std::unique_ptr<ScheduledTask> thirdLook_;
    bool sessionRuns_ = false;
    std::unique_ptr<ScheduledTask> poll_;
    Lifetime lifetime_;
};

} // namespace vespra
