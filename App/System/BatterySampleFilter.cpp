#include "App/System/BatterySampleFilter.h"

#include <cstdlib>

namespace vespra {

namespace {

    PowerSnapshot withoutEmptyLevel(PowerSnapshot reading)
    {
        if (reading.batteryLevel == 0)
            reading.batteryLevel.reset();
        return reading;
    }

} // namespace

BatterySampleFilter::BatterySampleFilter(
    PowerSnapshot first, TaskScheduling& tasks, std::function<void(PowerSnapshot)> onChange)
    : tasks_{tasks}
    , onChange_{std::move(onChange)}
    , believed_{withoutEmptyLevel(first)}
    , latest_{first}
{
    if (first.batteryLevel == 0)
        doubt(first);
}

void BatterySampleFilter::sample(PowerSnapshot reading)
{
    latest_ = reading;
    const bool jumps = isJump(reading);
    const bool isBroken = reading.batteryLevel == 0 && believed().batteryLevel != 0;
    if (!isBroken && (!jumps || hasJustWoken())) {
        if (jumps)
            wokeAt_.reset();
        secondLook_.reset();
        return believe(reading);
    }
    if (!secondLook_)
        doubt(reading);
    believe({.isOnACPower = reading.isOnACPower, .batteryLevel = believed().batteryLevel});
}

bool BatterySampleFilter::isJump(const PowerSnapshot& reading) const
{
    return reading.batteryLevel && believed().batteryLevel
        && std::abs(*reading.batteryLevel - *believed().batteryLevel) > largestJump;
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

} // namespace vespra
