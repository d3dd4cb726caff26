#pragma once

#include "Core/Scheduling/Instant.h"
#include "Core/Scheduling/MainLoop.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace vespra {

/// A main loop whose turns are taken by hand, for simulations and tests. Posting works from any thread.
class ManualMainLoop final : public MainLoop {
public:
    void post(std::function<void()> task) override
    {
        const std::lock_guard lock{mutex_};
        tasks_.push_back(std::move(task));
        posted_.notify_one();
    }

    /// Runs the tasks there are, and those that they post. Returns how many ran.
    int run()
    {
        int count = 0;
        while (auto task = take()) {
            task();
            ++count;
        }
        return count;
    }

    /// Takes turns until `isDone`, waiting for other threads at most `limit`. False if it was never done.
    template <class Predicate> bool runUntil(Predicate isDone, Seconds limit = 10s)
    {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        for (run(); !isDone(); run()) {
            std::unique_lock lock{mutex_};
            if (!posted_.wait_until(lock, deadline, [this] { return !tasks_.empty(); }))
                return isDone();
        }
        return true;
    }

private:
    std::function<void()> take()
    {
        const std::lock_guard lock{mutex_};
        if (tasks_.empty())
            return {};
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        return task;
    }

    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> tasks_;
};

} // namespace vespra
