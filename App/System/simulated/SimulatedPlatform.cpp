#include "App/System/simulated/SimulatedPlatform.h"

#include "App/System/Reading.h"
#include "App/System/simulated/SimulatedDesktop.h"
#include "App/System/simulated/SimulatedHelper.h"
#include "App/System/simulated/SimulatedLoginService.h"
#include "App/System/simulated/SimulatedNotifications.h"
#include "App/System/simulated/SimulatedUpdater.h"
#include "App/System/SystemPlatform.h"

namespace vespra {

namespace {

    using Machine = std::shared_ptr<SimulatedMachine>;

    class SimulatedPowerSource final : public PowerSourceMonitoring {
    public:
        explicit SimulatedPowerSource(const Machine& machine)
            : reading_{machine->state().power()}
        {
            machine->onChange(
                lifetime_.guard([this, &state = machine->state()] { reading_.update(state.power(), onChange); }));
        }
        PowerSnapshot snapshot() const override { return reading_.value(); }

    private:
        Reading<PowerSnapshot> reading_;
        Lifetime lifetime_;
    };

    class SimulatedThermal final : public ThermalMonitoring {
    public:
        explicit SimulatedThermal(const Machine& machine)
            : reading_{machine->state().thermal}
        {
            machine->onChange(
                lifetime_.guard([this, &state = machine->state()] { reading_.update(state.thermal, onChange); }));
        }
        ThermalLevel level() const override { return reading_.value(); }

    private:
        Reading<ThermalLevel> reading_;
        Lifetime lifetime_;
    };

    class SimulatedLid final : public LidMonitoring {
    public:
        explicit SimulatedLid(Machine machine)
            : machine_{std::move(machine)}
            , reading_{machine_->state().isClosedWithoutExternalDisplay()}
        {
            machine_->onChange(lifetime_.guard(
                [this] { reading_.update(machine_->state().isClosedWithoutExternalDisplay(), onChange); }));
        }
        bool isClosedWithoutExternalDisplay() const override { return reading_.value(); }
        bool isLidClosed() const override { return machine_->state().isLidClosed; }

    private:
        Machine machine_;
        Reading<bool> reading_;
        Lifetime lifetime_;
    };

    class SimulatedSleep final : public SystemSleepObserving {
    public:
        explicit SimulatedSleep(SimulatedMachine& machine)
        {
            machine.onSleep = lifetime_.guard([this](bool sleeps) { notify(sleeps ? onWillSleep : onDidWake); });
        }

    private:
        Lifetime lifetime_;
    };

    class SimulatedAssertions final : public PowerAssertionBackend {
    public:
        explicit SimulatedAssertions(Machine machine)
            : machine_{std::move(machine)}
        {
        }
        void beginActivity(const std::string& reason) override { activity_ = machine_->hold({"activity", reason}); }
        void endActivity() override { machine_->release(activity_); }
        std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string& name) override
        {
            return machine_->hold({std::string{rawValue(type)}, name});
        }
        void release(std::uint32_t id) override { machine_->release(id); }

    private:
        Machine machine_;
        std::uint32_t activity_ = 0;
    };

    class SimulatedDisplay final : public DisplayControl {
    public:
        explicit SimulatedDisplay(Machine machine)
            : machine_{std::move(machine)}
            , isOn_{machine_->state().isScreenOn}
        {
            machine_->onChange(lifetime_.guard([this] {
                const bool wasOn = std::exchange(isOn_, machine_->state().isScreenOn);
                if (isOn_ && !wasOn && watchesWaking_)
                    notify(onScreensWake);
            }));
        }
        std::expected<void, std::string> turnOff() override
        {
            setOn(false);
            return {};
        }
        std::expected<void, int> wake(const std::string&) override
        {
            setOn(true);
            return {};
        }
        void setWatchesWaking(bool watches) override { watchesWaking_ = watches; }

    private:
        void setOn(bool on)
        {
            auto next = machine_->state();
            next.isScreenOn = on;
            machine_->set(next);
        }

        Machine machine_;
        bool isOn_;
        bool watchesWaking_ = false;
        Lifetime lifetime_;
    };

    /// Everything is followed all the time.
    class SimulatedSession final : public SessionFollowing {
    public:
        void sessionRuns(bool) override { }
        void refresh() override { }
    };

    /// What the machine does when it is told to sleep or to shut down, by whomever.
    class SimulatedPower final : public SystemPower {
    public:
        SimulatedPower(MainLoop& mainLoop, Machine machine)
            : mainLoop_{mainLoop}
            , machine_{std::move(machine)}
        {
        }
        void sleepNow(Done done) override
        {
            sleep();
            answer(std::move(done), {});
        }
        void sleep() { std::ignore = machine_->set(MachineSettings{{"sleep", "now"}}); }

    private:
        void answer(Done done, std::expected<void, std::string> result)
        {
            mainLoop_.post([done = std::move(done), result = std::move(result)] { done(result); });
        }

        MainLoop& mainLoop_;
        Machine machine_;
    };

    PlatformHelper makeSimulatedHelper(const Machine& machine, MainLoop& mainLoop)
    {
        const auto helper = std::make_shared<SimulatedHelper>(mainLoop, machine->state().helper);
        const auto power = std::make_shared<SimulatedPower>(mainLoop, machine);
        machine->onChange([weak = std::weak_ptr{helper}, &state = machine->state()] {
            if (const auto there = weak.lock())
                there->setMode(state.helper);
        });
        helper->onModeChange = [helper = helper.get(), machine] {
            auto next = machine->state();
            next.helper = helper->mode();
            machine->set(next);
        };
        // A simulated laptop that was switched off could not be shown any more: it sleeps.
        helper->onSleep = helper->onShutDown = [power] { power->sleep(); };
        return {.service = helper, .connect = helper->connector(), .facts = helper, .power = power};
    }

} // namespace

Platform makeSimulatedPlatform() { return makeSimulatedPlatform(makePlatformTime()); }

Platform makeSimulatedPlatform(PlatformTime time)
{
    const auto machine = std::make_shared<SimulatedMachine>();
    Platform platform;
    platform.kind = PlatformKind::simulated;
    platform.time = std::move(time);
    platform.machine = machine;
    platform.power = std::make_unique<SimulatedPowerSource>(machine);
    platform.thermal = std::make_unique<SimulatedThermal>(machine);
    platform.lid = std::make_unique<SimulatedLid>(machine);
    platform.sleep = std::make_unique<SimulatedSleep>(*machine);
    platform.assertions = std::make_unique<SimulatedAssertions>(machine);
    platform.display = std::make_unique<SimulatedDisplay>(machine);
    platform.session = std::make_unique<SimulatedSession>();
    platform.notifications = std::make_unique<SimulatedNotifications>(machine);
    platform.alarm = std::make_unique<SimulatedAlarm>(machine, *platform.time.mainLoop, *platform.time.tasks);
    platform.login = std::make_unique<SimulatedLoginService>();
    platform.shortcut = std::make_unique<SimulatedShortcut>(*machine);
    platform.appearance = std::make_unique<SimulatedAppearance>(machine);
    platform.updater = std::make_unique<SimulatedUpdater>(machine, *platform.time.clock);
    platform.helper = makeSimulatedHelper(machine, *platform.time.mainLoop);
    return platform;
}

} // namespace vespra
