#include "Helper/linux/EventLoop.h"

#include <cstring>
#include <ctime>

namespace vespra {

namespace {

    constexpr std::uint64_t accuracy = 50'000; // microseconds

    std::uint64_t microseconds(Seconds length)
    {
        return static_cast<std::uint64_t>(
            std::max<std::int64_t>(0, std::chrono::duration_cast<std::chrono::microseconds>(length).count()));
    }

    class EventTask final : public ScheduledTask {
    public:
        EventTask(sd_event& event, Seconds after, std::function<void()> action)
            : action_{std::move(action)}
        {
            // It fails without memory only: then the process had better end, which lets go of everything.
            if (sd_event_add_time_relative(
                    &event, &source_, CLOCK_BOOTTIME, microseconds(after), accuracy, &EventTask::fire, this)
                < 0)
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

ContinuousInstant EventTaskScheduler::continuousNow() const
{
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return {std::chrono::seconds{now.tv_sec} + std::chrono::nanoseconds{now.tv_nsec}};
}

std::unique_ptr<ScheduledTask> EventTaskScheduler::schedule(Seconds after, std::function<void()> action)
{
    return std::make_unique<EventTask>(event_, after, std::move(action));
}

std::string systemError(int result) { return std::strerror(-result); }

} // namespace vespra
