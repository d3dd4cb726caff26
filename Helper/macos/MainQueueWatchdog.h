#pragma once

#import <dispatch/dispatch.h>

#include <atomic>
#include <cstdlib>
#include <memory>

namespace vespra {

/// Ends the process when its main thread hangs while it is watched: launchd starts it again, and it recovers. From
/// a queue of its own; its clock stands still while the Mac sleeps.
class MainQueueWatchdog {
public:
    /// Watching costs a wake-up every ten seconds.
    void setWatches(bool watches)
    {
        if (!watches)
            return end();
        if (timer_)
            return;
        timer_
            = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, dispatch_get_global_queue(QOS_CLASS_UTILITY, 0));
        dispatch_source_set_timer(
            timer_, dispatch_time(DISPATCH_TIME_NOW, interval), static_cast<std::uint64_t>(interval), NSEC_PER_SEC);
        const auto unanswered = std::make_shared<std::atomic<int>>(0);
        dispatch_source_set_event_handler(timer_, ^{
            if (unanswered->fetch_add(1) >= mostUnanswered)
                std::abort();
            dispatch_async(dispatch_get_main_queue(), ^{
                unanswered->store(0);
            });
        });
        dispatch_resume(timer_);
    }
    ~MainQueueWatchdog() { end(); }

private:
    static constexpr std::int64_t interval = 10 * static_cast<std::int64_t>(NSEC_PER_SEC);
    static constexpr int mostUnanswered = 2;

    void end()
    {
        if (timer_)
            dispatch_source_cancel(timer_);
        timer_ = nil;
    }

    dispatch_source_t timer_ = nil;
};

} // namespace vespra
