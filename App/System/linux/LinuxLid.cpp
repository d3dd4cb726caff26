#include "App/System/linux/LinuxLid.h"

#include "App/System/linux/Logind.h"
#include "App/System/linux/Sysfs.h"

namespace vespra {

LinuxLid::LinuxLid(std::shared_ptr<UPower> upower, TaskScheduling& tasks, std::filesystem::path sysfs)
    : upower_{std::move(upower)}
    , tasks_{tasks}
    , sysfs_{std::move(sysfs)}
    , logind_{dbus::systemBus(), logind::manager(), [this] { update(); }}
    , reading_{false}
    , displays_{"drm", [this] { displaysChanged(); }}
{
    if (!upower_->isLidClosed())
        logind_.await();
    update();
    upower_->onChange(lifetime_.guard([this] {
        update();
        followLogind();
    }));
}

bool LinuxLid::isLidClosed() const
{
    if (const auto closed = upower_->isLidClosed())
        return *closed;
    return logind_.get<bool>(QStringLiteral("LidClosed")).value_or(false);
}

void LinuxLid::sessionRuns(bool runs)
{
    sessionRuns_ = runs;
    followLogind();
}

void LinuxLid::refresh()
{
    if (!upower_->isLidClosed())
        logind_.refresh();
    update();
}

void LinuxLid::update() { reading_.update(isLidClosed() && !sysfs::hasExternalDisplay(sysfs_), onChange); }

void LinuxLid::displaysChanged()
{
    update();
    secondLook_ = tasks_.schedule(1s, [this] { update(); });
    thirdLook_ = tasks_.schedule(2s, [this] { update(); });
}

void LinuxLid::followLogind()
{
    if (!sessionRuns_ || upower_->isLidClosed())
        return poll_.reset();
    if (!poll_)
        poll_ = tasks_.schedule(pollInterval, [this] {
            poll_.reset();
            refresh();
            followLogind();
        });
}

} // namespace vespra
