#pragma once

#include "App/System/simulated/SimulatedPlatform.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"

namespace vespra {

/// A simulated laptop whose time and turns are made by hand, for pictures and tests. Main thread only.
class VirtualLaptop {
public:
    explicit VirtualLaptop(Instant start = Instant{})
        : time{start}
    {
    }
    VirtualLaptop(const VirtualLaptop&) = delete;
    VirtualLaptop& operator=(const VirtualLaptop&) = delete;

    /// Lets the application notice what has happened.
    void settle() { mainLoop.run(); }
    void advance(Seconds by)
    {
        time.advance(by);
        settle();
    }
    SimulatedMachine& machine() { return *platform.machine; }

    VirtualTime time;
    ManualMainLoop mainLoop;

private:
    /// What the platform owns of the time that is made by hand.
    struct Shared final : MainLoop, WallClock, DeadlineScheduling, TaskScheduling {
        explicit Shared(VirtualLaptop& owner)
            : of{owner}
        {
        }
        void post(std::function<void()> task) override { of.mainLoop.post(std::move(task)); }
        Instant now() const override { return of.time.now(); }
        ContinuousInstant continuousNow() const override { return of.time.continuousNow(); }
        std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) override
        {
            return of.time.schedule(date, std::move(action));
        }
        std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override
        {
            return of.time.schedule(after, std::move(action));
        }
        VirtualLaptop& of;
    };

public:
    Platform platform = makeSimulatedPlatform({
        .mainLoop = std::make_unique<Shared>(*this),
        .clock = std::make_unique<Shared>(*this),
        .deadlines = std::make_unique<Shared>(*this),
        .tasks = std::make_unique<Shared>(*this),
    });
};

} // namespace vespra
