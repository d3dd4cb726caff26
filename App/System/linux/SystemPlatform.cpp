#include "App/System/SystemPlatform.h"

#include "App/System/linux/LinuxAssertions.h"
#include "App/System/linux/Logind.h"
#include "App/System/linux/LogindLock.h"
#include "App/System/linux/TimerfdScheduler.h"
#include "App/System/QtMainLoop.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    LinuxAssertions::Inhibitions inhibitions(TaskScheduling& tasks)
    {
        const SystemLog log{Brand::appBundleID(), "assertions"};
        LinuxAssertions::Inhibitions all;
        // Plasma takes logind's idle lock for a wish to keep the screen on too.
        if (!qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("KDE")))
            all[PowerAssertionType::preventUserIdleSystemSleep].push_back(std::make_unique<LogindLock>(
                QString::fromStdString(Brand::appName()), QStringLiteral("idle"), QStringLiteral("block"), tasks, log));
        return all;
    }

    class NoPowerSource final : public PowerSourceMonitoring {
        PowerSnapshot snapshot() const override { return PowerSnapshot::desktop(); }
    };
    class NoThermal final : public ThermalMonitoring {
        ThermalLevel level() const override { return ThermalLevel::nominal; }
    };
    class NoLid final : public LidMonitoring {
        bool isClosedWithoutExternalDisplay() const override { return false; }
        bool isLidClosed() const override { return false; }
    };
    class NoDisplay final : public DisplayControl {
        std::expected<void, std::string> turnOff() override { return std::unexpected{"no display"}; }
        std::expected<void, int> wake(const std::string&) override { return {}; }
        void setWatchesWaking(bool) override { }
    };
    class NoSession final : public SessionFollowing {
        void sessionRuns(bool) override { }
        void refresh() override { }
    };

} // namespace

PlatformKind systemPlatformKind() { return PlatformKind::linux; }

std::expected<void, std::string> powerManagerAnswers()
{
    if (dbus::isOwned(dbus::systemBus(), logind::manager().service))
        return {};
    return std::unexpected{"No power manager answers on the system bus."};
}

PlatformTime makePlatformTime()
{
    return {.mainLoop = std::make_unique<QtMainLoop>(),
        .clock = std::make_unique<SystemClock>(),
        .deadlines = std::make_unique<TimerfdDeadlineScheduler>(),
        .tasks = std::make_unique<TimerfdTaskScheduler>()};
}

std::expected<Platform, std::string> makeSystemPlatform()
{
    if (!dbus::systemBus().isConnected())
        return std::unexpected{
            "The system bus does not answer: " + dbus::systemBus().lastError().message().toStdString()};
    Platform platform{.kind = PlatformKind::linux, .time = makePlatformTime()};
    platform.power = std::make_unique<NoPowerSource>();
    platform.thermal = std::make_unique<NoThermal>();
    platform.lid = std::make_unique<NoLid>();
    platform.sleep = std::make_unique<SystemSleepObserving>();
    platform.assertions = std::make_unique<LinuxAssertions>(inhibitions(*platform.time.tasks));
    platform.display = std::make_unique<NoDisplay>();
    platform.session = std::make_unique<NoSession>();
    return platform;
}

} // namespace vespra
