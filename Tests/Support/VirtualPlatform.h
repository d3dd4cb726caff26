#pragma once

#include "App/Model/UserDefaults.h"
#include "App/System/simulated/SimulatedPlatform.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/ManualMainLoop.h"

#include <map>
#include <stdexcept>

namespace vespra {

/// A simulated laptop whose time and turns the test makes.
class VirtualPlatform {
public:
    /// Changes the laptop and lets the application notice.
    void set(const MachineSettings& settings)
    {
        if (const auto done = machine().set(settings); !done)
            throw std::runtime_error{done.error()};
        settle();
    }
    void settle() { mainLoop.run(); }
    void advance(Seconds by)
    {
        time.advance(by);
        settle();
    }
    SimulatedMachine& machine() { return *platform.machine; }

    /// The types of what holds the laptop awake, in order.
    std::string held()
    {
        std::string types;
        for (const auto& [id, assertion] : machine().assertions())
            types += (types.empty() ? "" : " ") + assertion.type;
        return types;
    }
    /// The identifiers of the notifications on the screen, in order.
    std::string shown()
    {
        std::string identifiers;
        for (const auto& notification : machine().notifications())
            identifiers += (identifiers.empty() ? "" : " ") + notification.identifier;
        return identifiers;
    }

    VirtualTime time;
    ManualMainLoop mainLoop;

private:
    struct Loop final : MainLoop {
        explicit Loop(MainLoop& forwarded)
            : to{forwarded}
        {
        }
        void post(std::function<void()> task) override { to.post(std::move(task)); }
        MainLoop& to;
    };
    struct Clock final : WallClock {
        explicit Clock(const VirtualTime& forwarded)
            : to{forwarded}
        {
        }
        Instant now() const override { return to.now(); }
        const VirtualTime& to;
    };
    struct Deadlines final : DeadlineScheduling {
        explicit Deadlines(VirtualTime& forwarded)
            : to{forwarded}
        {
        }
        std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) override
        {
            return to.schedule(date, std::move(action));
        }
        VirtualTime& to;
    };
    struct Tasks final : TaskScheduling {
        explicit Tasks(VirtualTime& forwarded)
            : to{forwarded}
        {
        }
        ContinuousInstant continuousNow() const override { return to.continuousNow(); }
        std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override
        {
            return to.schedule(after, std::move(action));
        }
        VirtualTime& to;
    };

public:
    Platform platform = makeSimulatedPlatform({
        .mainLoop = std::make_unique<Loop>(mainLoop),
        .clock = std::make_unique<Clock>(time),
        .deadlines = std::make_unique<Deadlines>(time),
        .tasks = std::make_unique<Tasks>(time),
    });
};

/// Defaults in memory.
class MemoryDefaults final : public UserDefaults {
public:
    std::optional<std::string> data(std::string_view key) const override { return value(texts, key); }
    std::optional<bool> boolean(std::string_view key) const override { return value(flags, key); }
    void setData(std::string_view key, std::string_view data) override { texts[std::string{key}] = data; }
    void setBoolean(std::string_view key, bool flag) override { flags[std::string{key}] = flag; }

    std::map<std::string, std::string> texts;
    std::map<std::string, bool> flags;

private:
    template <class Value>
    static std::optional<Value> value(const std::map<std::string, Value>& values, std::string_view key)
    {
        const auto found = values.find(std::string{key});
        return found == values.end() ? std::nullopt : std::optional{found->second};
    }
};

} // namespace vespra
