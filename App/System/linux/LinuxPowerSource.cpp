#include "App/System/linux/LinuxPowerSource.h"

#include "App/System/linux/Sysfs.h"

namespace vespra {

LinuxPowerSource::LinuxPowerSource(std::shared_ptr<UPower> upower, TaskScheduling& tasks, std::filesystem::path sysfs)
    : upower_{std::move(upower)}
    , tasks_{tasks}
    , sysfs_{std::move(sysfs)}
    , filter_{read(), tasks, [this](PowerSnapshot believed) { notify(onChange, believed); }}
{
    followKernel();
    upower_->onChange(lifetime_.guard([this] { sourceChanged(); }));
}

PowerSnapshot LinuxPowerSource::read() const
{
    return upower_->answers() ? powerSnapshot(upower_->reading()) : sysfs::readPower(sysfs_);
}

void LinuxPowerSource::sessionRuns(bool runs)
{
    sessionRuns_ = runs;
    poll();
}

void LinuxPowerSource::sourceChanged()
{
    refresh();
    followKernel();
}

/// The kernel's events and files are a substitute: they are followed only while UPower does not answer.
void LinuxPowerSource::followKernel()
{
    if (upower_->answers())
        kernel_.reset();
    else if (!kernel_)
        kernel_ = std::make_unique<UdevMonitor>("power_supply", [this] { refresh(); });
    poll();
}

void LinuxPowerSource::poll()
{
    if (!sessionRuns_ || upower_->answers())
        return poll_.reset();
    if (!poll_)
        poll_ = tasks_.schedule(pollInterval, [this] {
            poll_.reset();
            refresh();
            poll();
        });
}

} // namespace vespra
