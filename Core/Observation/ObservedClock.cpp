#include "Core/Observation/ObservedClock.h"

#include <cmath>

namespace vespra {

ObservedClock::ObservedClock(const WallClock& clock, TaskScheduling& tasks)
    : clock_{clock}
    , tasks_{tasks}
{
}

Instant ObservedClock::now(Instant anchor, Seconds step) const
{
    const auto now = clock_.now();
    if (const auto reader = ReadScope::current()) {
        readers_.add(reader);
        // Positive before the anchor, negative after it: the part above whole steps runs out next in both cases.
        const auto left = anchor - now;
        const auto untilNext = left - std::floor(left / step) * step;
        reader->kept.push_back(tickBy(tasks_.continuousNow() + (untilNext + past)));
    }
    return now;
}

std::shared_ptr<const ObservedClock::Tick> ObservedClock::tickBy(ContinuousInstant due) const
{
    auto next = next_.lock();
    if (!next || due < next->due) {
        auto task = tasks_.schedule(due - tasks_.continuousNow(), lifetime_.guard([this] { tick(); }));
        next = std::make_shared<const Tick>(due, std::move(task));
        next_ = next;
    }
    return next;
}

void ObservedClock::tick() const
{
    next_.reset();
    readers_.tellAndForget();
}

} // namespace vespra
