#include "App/System/linux/LinuxThermal.h"

#include "App/System/linux/Sysfs.h"

namespace vespra {

LinuxThermal::LinuxThermal(const PowerSourceMonitoring& power, TaskScheduling& tasks, std::filesystem::path sysfs)
    : power_{power}
    , tasks_{tasks}
    , sysfs_{std::move(sysfs)}
    , reading_{estimate()}
{
}

ThermalLevel LinuxThermal::estimate()
{
    return estimate_.update(sysfs::readThermometers(sysfs_), tasks_.continuousNow());
}

void LinuxThermal::sessionRuns(bool runs)
{
    if (runs == static_cast<bool>(poll_))
        return;
    poll_.reset();
    if (runs)
        poll();
}

void LinuxThermal::poll()
{
    refresh();
    const bool isCalm = level() == ThermalLevel::nominal && power_.snapshot().isOnACPower;
    poll_ = tasks_.schedule(isCalm ? 10s : 5s, [this] { poll(); });
}

} // namespace vespra
