#include "Host/macos/DispatchTaskScheduler.h"

#include "Core/Scheduling/MainThread.h"

#import <dispatch/dispatch.h>

#include <algorithm>
#include <ctime>

namespace vespra {

namespace {

    constexpr std::uint64_t leeway = 100 * NSEC_PER_MSEC;

    std::chrono::nanoseconds continuousClock()
    {
        return std::chrono::nanoseconds{static_cast<std::int64_t>(clock_gettime_nsec_np(CLOCK_MONOTONIC_RAW))};
    }

    /// Dispatch has no timer on the continuous clock. One on the clock that stands still in sleep and one on the wall
    /// clock cover it together: the latter fires at a wake-up, the former also when somebody sets the clock back.
    /// Whichever fires looks at the continuous clock, and waits on if it is too early.
    struct ContinuousTimer : std::enable_shared_from_this<ContinuousTimer> {
        std::chrono::nanoseconds due{};
        std::function<void()> action;
        dispatch_source_t awake = nil;
        dispatch_source_t wall = nil;

        void start()
        {
            awake = makeSource();
            wall = makeSource();
            arm();
            dispatch_resume(awake);
            dispatch_resume(wall);
        }

        void cancel()
        {
            action = nullptr;
            dispatch_source_cancel(awake);
            dispatch_source_cancel(wall);
        }

    private:
        dispatch_source_t makeSource()
        {
            dispatch_source_t source
                = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
            const std::weak_ptr<ContinuousTimer> weak = weak_from_this();
            dispatch_source_set_event_handler(source, ^{
                @autoreleasepool {
                    if (const auto timer = weak.lock())
                        timer->fire();
                }
            });
            return source;
        }

        void arm()
        {
            const auto left = std::max<std::int64_t>((due - continuousClock()).count(), 0);
            dispatch_source_set_timer(awake, dispatch_time(DISPATCH_TIME_NOW, left), DISPATCH_TIME_FOREVER, leeway);
            dispatch_source_set_timer(wall, dispatch_walltime(nullptr, left), DISPATCH_TIME_FOREVER, leeway);
        }

        void fire()
        {
            mainThread::check();
            if (!action)
                return;
            if (continuousClock() < due)
                return arm();
            const auto copy = std::exchange(action, nullptr);
            cancel();
            copy();
        }
    };

    class DispatchScheduledTask final : public ScheduledTask {
    public:
        explicit DispatchScheduledTask(std::shared_ptr<ContinuousTimer> timer)
            : timer_{std::move(timer)}
        {
        }
        ~DispatchScheduledTask() override { cancel(); }
        void cancel() override { timer_->cancel(); }

    private:
        std::shared_ptr<ContinuousTimer> timer_;
    };

    class DispatchTaskScheduler final : public TaskScheduling {
    public:
        ContinuousInstant continuousNow() const override { return {continuousClock()}; }

        std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override
        {
            // An Instant saturates where the sum would not fit.
            const auto due = Instant{continuousClock()} + std::max(after, Seconds{});
            const auto timer = std::make_shared<ContinuousTimer>();
            timer->due = due.since1970();
            timer->action = std::move(action);
            timer->start();
            return std::make_unique<DispatchScheduledTask>(timer);
        }
    };

} // namespace

std::unique_ptr<TaskScheduling> makeDispatchTaskScheduler() { return std::make_unique<DispatchTaskScheduler>(); }

} // namespace vespra
