#pragma once

#include "Core/Scheduling/DeadlineScheduling.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"

#include <algorithm>
#include <map>

namespace vespra {

/// Time moved by hand, for simulations and tests: a wall clock, the deadlines on it, the continuous clock and the tasks
/// on that. The two clocks go together, except when somebody sets the wall clock.
class VirtualTime final : public WallClock, public DeadlineScheduling, public TaskScheduling {
public:
    explicit VirtualTime(Instant start = Instant{})
        : now_{start}
    {
    }

    Instant now() const override { return now_; }
    ContinuousInstant continuousNow() const override { return {uptime_.since1970()}; }

    std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) override
    {
        return add<ScheduledDeadline>(deadlines_, date, std::move(action));
    }
    std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override
    {
        return add<ScheduledTask>(tasks_, uptime_ + std::max(after, Seconds{}), std::move(action));
    }

    /// Moves both clocks by `by` and fires what comes due on the way, in order, each at its own moment.
    void advance(Seconds by) { advanceTo(now_ + by); }
    void advanceTo(Instant target)
    {
        while (fireNext(target)) {
        }
        moveTo(std::max(now_, target));
    }
    /// Something takes time to run: the clocks go on, and what comes due waits.
    void pass(Seconds by) { moveTo(now_ + by); }

    /// The computer sleeps for `by`: the clocks go on, and what came due fires only at the wake-up.
    void sleep(Seconds by)
    {
        pass(by);
        advance(0s);
    }

    /// Somebody sets the wall clock: deadlines that are due now fire, tasks notice nothing.
    void setClock(Instant to)
    {
        now_ = to;
        advance(0s);
    }

    /// The earliest pending deadline, possibly in the past; absent when none is pending.
    std::optional<Instant> nextDeadline() const
    {
        return deadlines_->empty() ? std::nullopt : std::optional{deadlines_->begin()->first.first};
    }
    std::size_t pendingDeadlines() const { return deadlines_->size(); }
    std::size_t pendingTasks() const { return tasks_->size(); }

private:
    /// The number keeps equal moments in the order of scheduling.
    using Key = std::pair<Instant, int>;
    using Queue = std::map<Key, std::function<void()>>;

    template <class Handle> class Entry final : public Handle {
    public:
        Entry(std::weak_ptr<Queue> queue, Key key)
            : queue_{std::move(queue)}
            , key_{key}
        {
        }
        ~Entry() override { cancel(); }
        void cancel() override
        {
            if (const auto queue = queue_.lock())
                queue->erase(key_);
        }

    private:
        std::weak_ptr<Queue> queue_;
        Key key_;
    };

    template <class Handle>
    std::unique_ptr<Handle> add(const std::shared_ptr<Queue>& queue, Instant due, std::function<void()> action)
    {
        const Key key{due, ++scheduled_};
        queue->emplace(key, std::move(action));
        return std::make_unique<Entry<Handle>>(queue, key);
    }

    /// Fires the earliest of all that is due by `target`; false when nothing is.
    bool fireNext(Instant target)
    {
        const auto deadline = deadlines_->empty() ? Instant::distantFuture() : deadlines_->begin()->first.first;
        const auto task = tasks_->empty() ? Instant::distantFuture() : now_ + (tasks_->begin()->first.first - uptime_);
        const auto due = std::min(deadline, task);
        if (due > target || due == Instant::distantFuture())
            return false;
        moveTo(std::max(now_, due));
        auto& queue = deadline <= task ? *deadlines_ : *tasks_;
        // Taken out first: the action may schedule, cancel, or destroy its own handle.
        const auto entry = queue.extract(queue.begin());
        entry.mapped()();
        return true;
    }

    void moveTo(Instant target)
    {
        uptime_ = uptime_ + (target - now_);
        now_ = target;
    }

    Instant now_;
    /// The continuous clock's moments, counted like dates.
    Instant uptime_{1h};
    int scheduled_ = 0;
    std::shared_ptr<Queue> deadlines_ = std::make_shared<Queue>();
    std::shared_ptr<Queue> tasks_ = std::make_shared<Queue>();
};

} // namespace vespra
