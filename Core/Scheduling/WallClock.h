#pragma once

// Core/Scheduling: clocks, deadlines, tasks and the calendar, all handed in, and time that simulations and tests move
// by hand.

#include "Core/Scheduling/Instant.h"

namespace vespra {

/// The date, handed in so that simulations and tests can set it.
class WallClock {
public:
    virtual ~WallClock() = default;
    virtual Instant now() const = 0;
};

/// The system's date. Any thread.
class SystemClock final : public WallClock {
public:
    Instant now() const override { return Instant{std::chrono::system_clock::now().time_since_epoch()}; }
};

} // namespace vespra
