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
    /// What the platform owns of the time that is the test's.
    struct Shared final : MainLoop, WallClock, DeadlineScheduling, TaskScheduling {
        explicit Shared(VirtualPlatform& owner)
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
        VirtualPlatform& of;
    };

public:
    Platform platform = makeSimulatedPlatform({
        .mainLoop = std::make_unique<Shared>(*this),
        .clock = std::make_unique<Shared>(*this),
        .deadlines = std::make_unique<Shared>(*this),
        .tasks = std::make_unique<Shared>(*this),
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
