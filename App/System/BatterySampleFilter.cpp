#include "App/System/BatterySampleFilter.h"

#include "Core/Lifetime.h"

#include <cstdlib>

namespace vespra {

BatterySampleFilter::BatterySampleFilter(
    PowerSnapshot first, TaskScheduling& tasks, std::function<void(PowerSnapshot)> accept)
    : tasks_{tasks}
    , accept_{std::move(accept)}
    , believed_{first}
    , latest_{first}
{
    if (first.batteryLevel == 0) {
        believed_.batteryLevel.reset();
        doubt(first);
    }
}

void BatterySampleFilter::sample(PowerSnapshot reading)
{
    latest_ = reading;
    const bool jumps = isJump(reading);
    const bool isBroken = reading.batteryLevel == 0 && believed_.batteryLevel != 0;
    if (!isBroken && (!jumps || hasJustWoken())) {
        if (jumps)
            wokeAt_.reset();
        secondLook_.reset();
        return believe(reading);
    }
    if (!secondLook_)
        doubt(reading);
    believe({.isOnACPower = reading.isOnACPower, .batteryLevel = believed_.batteryLevel});
}

bool BatterySampleFilter::isJump(const PowerSnapshot& reading) const
{
    return reading.batteryLevel && believed_.batteryLevel
        && std::abs(*reading.batteryLevel - *believed_.batteryLevel) > largestJump;
}

bool BatterySampleFilter::hasJustWoken() const
{
    return wokeAt_ && tasks_.continuousNow() - *wokeAt_ <= explainedBySleep;
}

void BatterySampleFilter::doubt(const PowerSnapshot& reading)
{
    doubtful_ = *reading.batteryLevel;
    secondLook_ = tasks_.schedule(secondLookDelay, [this] { lookAgain(); });
}

void BatterySampleFilter::lookAgain()
{
    if (std::abs(*latest_.batteryLevel - doubtful_) > agreement)
        return doubt(latest_);
    secondLook_.reset();
    believe(latest_);
}

void BatterySampleFilter::believe(PowerSnapshot reading)
{
    believed_ = reading;
    notify(accept_, reading);
}

} // namespace vespra
