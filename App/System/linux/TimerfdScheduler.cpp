#include "App/System/linux/TimerfdScheduler.h"

#include "Core/Scheduling/MainThread.h"
#include "HelperProtocol/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <QSocketNotifier>
#include <sys/timerfd.h>

namespace vespra {

using std::chrono::nanoseconds;

/// The pending entries of one clock, and the one timer that is set to the earliest of them. Ending it cancels all.
class TimerfdQueue final : public std::enable_shared_from_this<TimerfdQueue> {
public:
    /// The number keeps equal moments in the order of scheduling.
    using Key = std::pair<nanoseconds, std::uint64_t>;

    explicit TimerfdQueue(clockid_t clock)
        : clock_{clock}
        , timer_{timerfd_create(clock, TFD_CLOEXEC | TFD_NONBLOCK)}
    {
        // Without timers no session would ever end, so rather none starts.
        if (!timer_) {
            std::perror("timerfd_create");
            std::abort();
        }
        notifier_ = std::make_unique<QSocketNotifier>(timer_.get(), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { fire(); });
    }

    nanoseconds now() const
    {
        timespec time{};
        clock_gettime(clock_, &time);
        return std::chrono::seconds{time.tv_sec} + nanoseconds{time.tv_nsec};
    }

    Key add(nanoseconds due, std::function<void()> action)
    {
        mainThread::check();
        const Key key{due, ++scheduled_};
        pending_.emplace(key, std::move(action));
        arm();
        return key;
    }

    void remove(const Key& key)
    {
        mainThread::check();
        if (pending_.erase(key) > 0)
            arm();
    }

private:
    /// Runs what is due, but nothing that an action schedules: that waits for a later turn. A timer that was cancelled
    /// because somebody set the clock is no different: what is due by the new time is run, the rest is set anew.
    void fire()
    {
        mainThread::check();
        const auto kept = shared_from_this(); // an action may end the scheduler
        std::uint64_t expirations = 0;
        [[maybe_unused]] const auto size = ::read(timer_.get(), &expirations, sizeof expirations);
        const auto last = scheduled_;
        const auto until = now();
        const auto isDue = [&](const auto& entry) { return entry.first.first <= until && entry.first.second <= last; };
        const auto nextDue = [&] { return std::ranges::find_if(pending_, isDue); };
        for (auto due = nextDue(); due != pending_.end(); due = nextDue()) {
            // Taken out first: the action may schedule, cancel, or destroy its own handle.
            const auto entry = pending_.extract(due);
            entry.mapped()();
        }
        arm();
    }

    /// A clock that was set a moment ago makes this fail with ECANCELED, although the timer is set.
    void arm()
    {
        itimerspec setting{};
        if (!pending_.empty()) {
            // Zero would stop the timer; dates before 1970 are just as much in the past.
            const auto due = std::max(pending_.begin()->first.first, nanoseconds{1});
            const auto seconds = std::chrono::floor<std::chrono::seconds>(due);
            setting.it_value = {.tv_sec = seconds.count(), .tv_nsec = (due - seconds).count()};
        }
        const int flags = TFD_TIMER_ABSTIME | (clock_ == CLOCK_REALTIME ? TFD_TIMER_CANCEL_ON_SET : 0);
        if (timerfd_settime(timer_.get(), flags, &setting, nullptr) < 0 && errno != ECANCELED) {
            std::perror("timerfd_settime");
            std::abort();
        }
    }

    clockid_t clock_;
    FileDescriptor timer_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<Key, std::function<void()>> pending_;
    std::uint64_t scheduled_ = 0;
};

namespace {

    template <class Handle> class TimerfdEntry final : public Handle {
    public:
        TimerfdEntry(std::weak_ptr<TimerfdQueue> queue, TimerfdQueue::Key key)
            : queue_{std::move(queue)}
            , key_{key}
        {
        }
        ~TimerfdEntry() override { cancel(); }
        void cancel() override
        {
            if (const auto queue = queue_.lock())
                queue->remove(key_);
        }

    private:
        std::weak_ptr<TimerfdQueue> queue_;
        TimerfdQueue::Key key_;
    };

} // namespace

TimerfdDeadlineScheduler::TimerfdDeadlineScheduler()
    : queue_{std::make_shared<TimerfdQueue>(CLOCK_REALTIME)}
{
}

TimerfdDeadlineScheduler::~TimerfdDeadlineScheduler() = default;

std::unique_ptr<ScheduledDeadline> TimerfdDeadlineScheduler::schedule(Instant date, std::function<void()> action)
{
    return std::make_unique<TimerfdEntry<ScheduledDeadline>>(queue_, queue_->add(date.since1970(), std::move(action)));
}

TimerfdTaskScheduler::TimerfdTaskScheduler()
    : queue_{std::make_shared<TimerfdQueue>(CLOCK_BOOTTIME)}
{
}

TimerfdTaskScheduler::~TimerfdTaskScheduler() = default;

ContinuousInstant TimerfdTaskScheduler::continuousNow() const { return {queue_->now()}; }

std::unique_ptr<ScheduledTask> TimerfdTaskScheduler::schedule(Seconds after, std::function<void()> action)
{
    // An Instant saturates where the sum would not fit.
    const auto due = Instant{queue_->now()} + std::max(after, Seconds{});
    return std::make_unique<TimerfdEntry<ScheduledTask>>(queue_, queue_->add(due.since1970(), std::move(action)));
}

} // namespace vespra
