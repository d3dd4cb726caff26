#pragma once

#include "Core/Lifetime.h"
#include "Core/Scheduling/PowerSourceMonitoring.h"
#include "Core/Scheduling/ThermalMonitoring.h"

namespace vespra {

inline PowerSnapshot charger(std::optional<std::int64_t> level = {})
{
    return {.isOnACPower = true, .batteryLevel = level};
}
inline PowerSnapshot battery(std::optional<std::int64_t> level)
{
    return {.isOnACPower = false, .batteryLevel = level};
}

class FakePowerSource final : public PowerSourceMonitoring {
public:
    explicit FakePowerSource(PowerSnapshot first = {})
        : reading_{first}
    {
    }
    PowerSnapshot snapshot() const override { return reading_; }
    void report(PowerSnapshot next)
    {
        reading_ = next;
        notify(onChange, next);
    }

private:
    PowerSnapshot reading_;
};

class FakeThermal final : public ThermalMonitoring {
public:
    explicit FakeThermal(ThermalLevel first = ThermalLevel::nominal)
        : reading_{first}
    {
    }
    ThermalLevel level() const override { return reading_; }
    void report(ThermalLevel next)
    {
        reading_ = next;
        notify(onChange, next);
    }

private:
    ThermalLevel reading_;
};

} // namespace vespra
