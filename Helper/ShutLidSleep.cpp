#include "Helper/ShutLidSleep.h"

namespace vespra {

ShutLidSleep::ShutLidSleep(PowerControl& power, TaskScheduling& tasks, SystemLog log)
    : power_{power}
    , tasks_{tasks}
    , log_{std::move(log)}
{
}

void ShutLidSleep::begin(Seconds wait)
{
    looksLeft_ = mostLooks;
    scheduleLook(wait);
    notify(onChange);
}

void ShutLidSleep::cancel()
{
    next_.reset();
    notify(onChange);
}

void ShutLidSleep::scheduleLook(Seconds after)
{
    due_ = tasks_.continuousNow() + after;
    next_ = tasks_.schedule(after, lifetime_.guard([this] { look(); }));
}

void ShutLidSleep::look()
{
    if (wasSleptOver(due_, tasks_.continuousNow()) || looksLeft_-- == 0 || !power_.shouldSleepForLid())
        return cancel();
    if (const auto asked = power_.suspend(); !asked)
        log_.error("Mise en veille, capot fermé, impossible : " + asked.error());
    scheduleLook(interval);
}

} // namespace vespra
