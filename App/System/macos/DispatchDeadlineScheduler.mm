#include "App/System/macos/MacAdapters.h"
#include "Core/Scheduling/MainThread.h"

#import <dispatch/dispatch.h>

namespace vespra {

namespace {

    constexpr std::uint64_t leeway = 100 * NSEC_PER_MSEC;

    class DispatchScheduledDeadline final : public ScheduledDeadline {
    public:
        explicit DispatchScheduledDeadline(dispatch_source_t timer)
            : timer_{timer}
        {
        }
        ~DispatchScheduledDeadline() override { cancel(); }
        void cancel() override { dispatch_source_cancel(timer_); }

    private:
        dispatch_source_t timer_;
    };

    class DispatchDeadlineScheduler final : public DeadlineScheduling {
    public:
        std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) override
        {
            dispatch_source_t timer
                = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_main_queue());
            const auto seconds = std::chrono::floor<std::chrono::seconds>(date.since1970());
            const timespec deadline{
                .tv_sec = seconds.count(), .tv_nsec = static_cast<long>((date.since1970() - seconds).count())};
            dispatch_source_set_timer(timer, dispatch_walltime(&deadline, 0), DISPATCH_TIME_FOREVER, leeway);
            dispatch_source_set_event_handler(timer, ^{
                mainThread::check();
                // A copy: the action may end the handle, and this block with it.
                const auto copy = action;
                @autoreleasepool {
                    copy();
                }
            });
            dispatch_resume(timer);
            return std::make_unique<DispatchScheduledDeadline>(timer);
        }
    };

} // namespace

std::unique_ptr<DeadlineScheduling> makeDispatchDeadlineScheduler()
{
    return std::make_unique<DispatchDeadlineScheduler>();
}

} // namespace vespra
