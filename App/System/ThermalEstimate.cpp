#include "App/System/ThermalEstimate.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace vespra {

namespace {

    constexpr Seconds window = 30s;
    constexpr double hysteresis = 5;

    /// Where each level begins, the highest first.
    std::array<std::pair<ThermalLevel, double>, 3> thresholds(const ThermalSample& sample)
    {
        const double limit = *sample.limit, critical = limit - 3, tenBelow = limit - 10;
        const double passive = sample.passiveTrip.value_or(tenBelow);
        return {{{ThermalLevel::critical, critical},
            {ThermalLevel::serious, passive > tenBelow && passive < critical ? passive : tenBelow},
            {ThermalLevel::fair, limit - 20}}};
    }

} // namespace

ThermalLevel ThermalEstimate::update(const std::vector<ThermalSample>& samples, ContinuousInstant now)
{
    for (const auto& sample : samples)
        if (sample.limit)
            follow(sensors_[sample.sensor], sample, now);
    forgetSilentSensors(now);
    auto hottest = ThermalLevel::nominal;
    for (const auto& [name, sensor] : sensors_)
        hottest = std::max(hottest, sensor.level);
    return hottest;
}

void ThermalEstimate::forgetSilentSensors(ContinuousInstant now)
{
    std::erase_if(sensors_, [now](const auto& entry) { return now - entry.second.history.back().first > window; });
}

void ThermalEstimate::follow(Sensor& sensor, const ThermalSample& sample, ContinuousInstant now)
{
    auto& history = sensor.history;
    history.emplace_back(now, sample.temperature);
    while (now - history.front().first > window)
        history.pop_front();
    const auto sum = std::accumulate(
        history.begin(), history.end(), 0.0, [](double total, const auto& entry) { return total + entry.second; });
    const double average = sum / static_cast<double>(history.size());

    const auto before = std::exchange(sensor.level, ThermalLevel::nominal);
    for (const auto& [level, threshold] : thresholds(sample))
        if (average >= (level <= before ? threshold - hysteresis : threshold)) {
            sensor.level = level;
            break;
        }
    if (sample.temperature >= *sample.limit)
        sensor.level = ThermalLevel::critical;
}

} // namespace vespra
