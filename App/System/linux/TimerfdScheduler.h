#pragma once

#include "Core/Scheduling/DeadlineScheduling.h"
#include "Core/Scheduling/TaskScheduling.h"

namespace vespra {

class TimerfdQueue;

/// Deadlines on the wall clock, all on one timer of the kernel: it follows a set clock and counts through sleep.
class TimerfdDeadlineScheduler final : public DeadlineScheduling {
public:
    TimerfdDeadlineScheduler();
    ~TimerfdDeadlineScheduler() override;
    std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) override;

private:
    std::shared_ptr<TimerfdQueue> queue_;
};

/// Tasks on the continuous clock, all on one timer of the kernel.
class TimerfdTaskScheduler final : public TaskScheduling {
public:
    TimerfdTaskScheduler();
    ~TimerfdTaskScheduler() override;
    ContinuousInstant continuousNow() const override;
    std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override;

private:
    std::shared_ptr<TimerfdQueue> queue_;
};

} // namespace vespra
