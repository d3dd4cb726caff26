#pragma once

#include "Core/Scheduling/Instant.h"

#include <functional>
#include <memory>

namespace vespra {

/// A moment on the continuous clock: it counts while the computer sleeps and no one can set it.
struct ContinuousInstant {
    /// Since some moment at or before the start of the computer.
    Seconds uptime{};

    friend constexpr bool operator==(ContinuousInstant, ContinuousInstant) = default;
    // Older C++ libraries of clang cannot order durations in three ways.
    friend constexpr auto operator<=>(ContinuousInstant left, ContinuousInstant right)
    {
        return left.uptime.count() <=> right.uptime.count();
    }
    friend constexpr ContinuousInstant operator+(ContinuousInstant instant, Seconds length)
    {
        return {instant.uptime + length};
    }
    friend constexpr Seconds operator-(ContinuousInstant later, ContinuousInstant earlier)
    {
        return later.uptime - earlier.uptime;
    }
};

/// A task that waits. Destroying the handle cancels it.
class ScheduledTask {
public:
    virtual ~ScheduledTask() = default;
    /// A cancelled task never runs. Cancelling twice, or after it has run, does nothing.
    virtual void cancel() = 0;
};

/// Runs tasks after a length of continuous time: heartbeats, polls, countdowns. Main thread only.
class TaskScheduling {
public:
    virtual ~TaskScheduling() = default;
    virtual ContinuousInstant continuousNow() const = 0;
    /// Runs `action` once on the main thread; at the wake-up if the computer sleeps over it. The handle may be
    /// destroyed inside `action`.
    virtual std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) = 0;
};

} // namespace vespra
