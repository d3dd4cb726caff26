#pragma once

#include "Core/Lifetime.h"
#include "Core/Observation/ReadScope.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"

namespace vespra {

/// The date as a value that observation loops follow: a loop that has read it runs again just past the next whole
/// second of what it counts, or whole minute. Nothing wakes up while nobody reads. Main thread only.
class ObservedClock {
public:
    /// How far past a whole second its readers are told, so that none is shown twice or left out.
    static constexpr Seconds past{0.02};

    /// Both outlive it.
    ObservedClock(const WallClock& clock, TaskScheduling& tasks);
    ObservedClock(const ObservedClock&) = delete;
    ObservedClock& operator=(const ObservedClock&) = delete;

    /// The date, followed. Whole steps are counted from `anchor`, the start or the end of what the reader shows, before
    /// or after now.
    Instant now(Instant anchor, Seconds step = std::chrono::seconds{1}) const;

private:
    /// Belongs to those who read the clock, so that none is left when they are gone.
    struct Tick {
        ContinuousInstant due;
        std::unique_ptr<ScheduledTask> task;
    };
    std::shared_ptr<const Tick> tickBy(ContinuousInstant due) const;
    void tick() const;

    const WallClock& clock_;
    TaskScheduling& tasks_;
    // Reading subscribes, as it does with every observed value.
    mutable Readers readers_;
    mutable std::weak_ptr<const Tick> next_;
    Lifetime lifetime_;
};

} // namespace vespra
