#pragma once

#include "App/System/Reading.h"
#include "Core/Energy/PowerSnapshot.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <functional>
#include <memory>

namespace vespra {

/// Keeps one bad sample of a battery from ending a session, and holds the reading that is believed. A level of 0, and
/// one more than 30 points away from the last, is believed only when a second look 10 s later agrees to within 5
/// points; until then the last level stays. The charger is always believed at once. Main thread only.
class BatterySampleFilter {
public:
    /// `onChange` receives each reading that is believed and differs from the one before.
    BatterySampleFilter(PowerSnapshot first, TaskScheduling& tasks, std::function<void(PowerSnapshot)> onChange);

    /// The reading that is believed. Until the first sample it is `first`, without its level if that is 0.
    PowerSnapshot believed() const { return believed_.value(); }
    void sample(PowerSnapshot reading);
    /// The machine has slept: for some minutes one jump to any level but 0 is believed. Readings from before the sleep
    /// may still arrive first.
    void didSleep() { wokeAt_ = tasks_.continuousNow(); }

private:
    static constexpr std::int64_t largestJump = 30; // percentage points
    static constexpr std::int64_t agreement = 5; // percentage points
    static constexpr Seconds secondLookDelay = 10s;
    /// Longer than the two minutes that some services let pass between two looks at a battery.
    static constexpr Seconds explainedBySleep = 3min;

    bool isJump(const PowerSnapshot& reading) const;
    bool hasJustWoken() const;
    void doubt(const PowerSnapshot& reading);
    void lookAgain();
    void believe(const PowerSnapshot& reading) { believed_.update(reading, onChange_); }

    TaskScheduling& tasks_;
    std::function<void(PowerSnapshot)> onChange_;
    Reading<PowerSnapshot> believed_;
    PowerSnapshot latest_;
    /// The level in doubt when the second look was arranged.
    std::int64_t doubtful_ = 0;
    /// Absent once a jump has been attributed to the sleep.
    std::optional<ContinuousInstant> wokeAt_;
    std::unique_ptr<ScheduledTask> secondLook_;
};

} // namespace vespra
