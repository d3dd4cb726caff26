#pragma once

#include "Core/Energy/ThermalLevel.h"

#include <functional>

namespace vespra {

/// Reads how hot the machine runs. `level` is valid from construction on. Main thread only.
class ThermalMonitoring {
public:
    virtual ~ThermalMonitoring() = default;
    virtual ThermalLevel level() const = 0;
    /// Called on the main thread with each new reading; empty while nobody listens.
    std::function<void(ThermalLevel)> onChange;
};

} // namespace vespra
