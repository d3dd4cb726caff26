#pragma once

#include "App/System/Reading.h"
#include "App/System/ThermalEstimate.h"
#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Energy/ThermalMonitoring.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <filesystem>
#include <memory>

namespace vespra {

/// Estimates the level from the kernel's thermometers: every 5 s while a session runs, every 10 s as long as it is
/// nominal and on the charger, and otherwise only when asked to.
class LinuxThermal final : public ThermalMonitoring {
public:
    LinuxThermal(const PowerSourceMonitoring& power, TaskScheduling& tasks, std::filesystem::path sysfs);

    ThermalLevel level() const override { return reading_.value(); }
    void sessionRuns(bool runs);
    void refresh() { reading_.update(estimate(), onChange); }

private:
    ThermalLevel estimate();
    void poll();

    const PowerSourceMonitoring& power_;
    TaskScheduling& tasks_;
    std::filesystem::path sysfs_;
    ThermalEstimate estimate_;
    Reading<ThermalLevel> reading_;
    std::unique_ptr<ScheduledTask> poll_;
};

} // namespace vespra
