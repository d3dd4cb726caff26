#pragma once

#include "App/System/BatterySampleFilter.h"
#include "App/System/linux/UdevMonitor.h"
#include "App/System/linux/UPower.h"
#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <filesystem>

namespace vespra {

/// UPower's reading. While UPower does not answer, the kernel's files are read instead: at each kernel event and, while
/// a session runs, every 30 s.
class LinuxPowerSource final : public PowerSourceMonitoring {
public:
    LinuxPowerSource(std::shared_ptr<UPower> upower, TaskScheduling& tasks, std::filesystem::path sysfs);

    PowerSnapshot snapshot() const override { return filter_.believed(); }
    void sessionRuns(bool runs);
    void refresh() { filter_.sample(read()); }
    void didSleep() { filter_.didSleep(); }

private:
    static constexpr Seconds pollInterval = 30s;

    PowerSnapshot read() const;
    void sourceChanged();
    void followKernel();
    void poll();

    std::shared_ptr<UPower> upower_;
    TaskScheduling& tasks_;
    std::filesystem::path sysfs_;
    BatterySampleFilter filter_;
    std::unique_ptr<UdevMonitor> kernel_;
    bool sessionRuns_ = false;
    std::unique_ptr<ScheduledTask> poll_;
    Lifetime lifetime_;
};

} // namespace vespra
