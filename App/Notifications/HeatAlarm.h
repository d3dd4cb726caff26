#pragma once

#include "App/System/SoundPlayer.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"

namespace vespra {

/// The alarm of a hot machine: one sound at a time, cut off after `longest`. Main thread only.
class HeatAlarm {
public:
    /// A player that has not come to its end by then is stopped.
    static constexpr Seconds longest = 5s;

    /// Both outlive this.
    HeatAlarm(SoundPlayer& player, TaskScheduling& tasks);
    ~HeatAlarm();
    HeatAlarm(const HeatAlarm&) = delete;
    HeatAlarm& operator=(const HeatAlarm&) = delete;

    /// Plays it from its start; one that sounds ends first. `completion`, which may be empty, is called once in a later
    /// turn, when this play has ended in whatever way; not after the alarm itself is gone.
    void play(std::function<void()> completion = {});

private:
    SoundPlayer& player_;
    TaskScheduling& tasks_;
    int play_ = 0;
    /// Ends a play that takes too long; none while nothing sounds.
    std::unique_ptr<ScheduledTask> task_;
    Lifetime lifetime_;
};

} // namespace vespra
