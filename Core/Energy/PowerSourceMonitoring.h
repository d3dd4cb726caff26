#pragma once

#include "Core/Energy/PowerSnapshot.h"

#include <functional>

namespace vespra {

/// Reads the power source. `snapshot` is valid from construction on. Main thread only.
class PowerSourceMonitoring {
public:
    virtual ~PowerSourceMonitoring() = default;
    virtual PowerSnapshot snapshot() const = 0;
    /// Called on the main thread with each new reading; empty while nobody listens.
    std::function<void(PowerSnapshot)> onChange;
};

} // namespace vespra
