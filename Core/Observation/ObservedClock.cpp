#include "Core/Observation/ObservedClock.h"

#include <cmath>

namespace vespra {

ObservedClock::ObservedClock(const WallClock& clock, TaskScheduling& tasks)
    : clock_{clock}
    , tasks_{tasks}
{
}

Instant ObservedClock::now(Instant anchor) const
{
    const auto now = clock_.now();
    if (const auto reader = ReadScope::current()) {
        readers_.add(reader);
        // Positive before the anchor, negative after it: the part above the whole number runs out next in both cases.
        const double left = (anchor - now).count();
        wakeBy(tasks_.continuousNow() + (Seconds{left - std::floor(left)} + past));
    }
    return now;
}

void ObservedClock::wakeBy(ContinuousInstant due) const
{
    if (due_ && *due_ <= due)
        return;
    due_ = due;
    tick_ = tasks_.schedule(due - tasks_.continuousNow(), lifetime_.guard([this] { tick(); }));
}

void ObservedClock::tick() const
{
    due_.reset();
    readers_.tellAndForget();
}

} // namespace vespra
