#pragma once

#include "Core/Energy/PowerSnapshot.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <functional>
#include <memory>

namespace vespra {

/// Keeps one bad sample of a battery from ending a session. A level of 0, and one more than 30 points away from the
/// last, is believed only when a second look 10 s later agrees to 5 points; until then the last level stays. The
/// charger is always believed at once. Main thread only.
class BatterySampleFilter {
public:
    /// `accept` receives each reading that is believed, also when nothing has changed; not the first one.
    BatterySampleFilter(PowerSnapshot first, TaskScheduling& tasks, std::function<void(PowerSnapshot)> accept);

    /// The first reading: of a level of 0 only the charger is believed as yet.
    PowerSnapshot believed() const { return believed_; }
    void sample(PowerSnapshot reading);
    /// The machine has slept: for some minutes one jump to any level but 0 is believed. Readings from before the sleep
    /// may come first.
    void didSleep() { wokeAt_ = tasks_.continuousNow(); }

private:
    static constexpr std::int64_t largestJump = 30;
    static constexpr std::int64_t agreement = 5;
    static constexpr Seconds secondLookDelay = 10s;
    /// Services look at a battery as seldom as every two minutes.
    static constexpr Seconds explainedBySleep = 3min;

    bool isJump(const PowerSnapshot& reading) const;
    bool hasJustWoken() const;
    void doubt(const PowerSnapshot& reading);
    void lookAgain();
    void believe(PowerSnapshot reading);

    TaskScheduling& tasks_;
    std::function<void(PowerSnapshot)> accept_;
    PowerSnapshot believed_;
    PowerSnapshot latest_;
    /// The level in doubt when the second look was arranged.
    std::int64_t doubtful_ = 0;
    /// Absent as soon as a jump has been put down to the sleep.
    std::optional<ContinuousInstant> wokeAt_;
    std::unique_ptr<ScheduledTask> secondLook_;
};

} // namespace vespra
