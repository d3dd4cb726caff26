#pragma once

#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Energy/ThermalMonitoring.h"
#include "Core/Lifetime.h"

namespace vespra {

/// A power source whose readings are given by hand, for simulations and tests.
class ScriptedPowerSource final : public PowerSourceMonitoring {
public:
    explicit ScriptedPowerSource(PowerSnapshot first = {})
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

/// The same for heat.
class ScriptedThermal final : public ThermalMonitoring {
public:
    explicit ScriptedThermal(ThermalLevel first = ThermalLevel::nominal)
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
