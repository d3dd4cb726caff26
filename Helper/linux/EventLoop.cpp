#include "Helper/linux/EventLoop.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace vespra {

namespace {

    constexpr std::uint64_t accuracy = 50'000; // microseconds

    std::chrono::nanoseconds now()
    {
        timespec time{};
        clock_gettime(CLOCK_BOOTTIME, &time);
        return std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec};
    }

    /// Rounded up: the moment that was asked for has come when the task runs. The loop's own "now" is that of the
    /// turn's start, which may be long ago.
    std::uint64_t microsecondsAfterNow(Seconds length)
    {
        const Seconds due = now() + std::max(length, Seconds{});
        return static_cast<std::uint64_t>(std::chrono::ceil<std::chrono::microseconds>(due).count());
    }

    class EventTask final : public ScheduledTask {
    public:
        EventTask(sd_event& event, Seconds after, std::function<void()> action)
            : action_{std::move(action)}
        {
            const int added = sd_event_add_time(
                &event, &source_, CLOCK_BOOTTIME, microsecondsAfterNow(after), accuracy, &EventTask::fire, this);
            // Once the loop has ended, no task runs any more. Otherwise it fails without memory only: then the process
            // had better end, which lets go of everything.
            if (added < 0 && added != -ESTALE)
                std::abort();
        }
        ~EventTask() override { cancel(); }
        void cancel() override { source_ = sd_event_source_disable_unref(source_); }

    private:
        static int fire(sd_event_source*, std::uint64_t, void* self)
        {
            // The action may destroy the task.
            const auto action = std::move(static_cast<EventTask*>(self)->action_);
            action();
            return 0;
        }

        std::function<void()> action_;
        sd_event_source* source_ = nullptr;
    };

} // namespace

ContinuousInstant EventTaskScheduler::continuousNow() const { return {now()}; }

std::unique_ptr<ScheduledTask> EventTaskScheduler::schedule(Seconds after, std::function<void()> action)
{
    return std::make_unique<EventTask>(event_, after, std::move(action));
}

std::string systemError(int result) { return std::strerror(-result); }

} // namespace vespra
