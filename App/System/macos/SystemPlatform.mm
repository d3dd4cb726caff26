#include "App/System/SystemPlatform.h"

#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/MacHelper.h"
#include "App/System/QtMainLoop.h"
#include "Host/macos/DispatchTaskScheduler.h"

#include <cstdlib>

namespace vespra {

namespace {

    // Without windows Qt's own event loop would serve neither the main run loop nor the main queue; it asks for this
    // when the application object is made.
    [[maybe_unused]] const int servesMainRunLoop = setenv("QT_EVENT_DISPATCHER_CORE_FOUNDATION", "1", 0);

    /// Everything is followed all the time, by notifications.
    class MacSession final : public SessionFollowing {
    public:
        void sessionRuns(bool) override { }
        void refresh() override { }
    };

} // namespace

PlatformKind systemPlatformKind() { return PlatformKind::macos; }

std::expected<void, std::string> powerManagerAnswers() { return {}; }

PlatformTime makePlatformTime()
{
    return {.mainLoop = std::make_unique<QtMainLoop>(),
        .clock = std::make_unique<SystemClock>(),
        .deadlines = makeDispatchDeadlineScheduler(),
        .tasks = makeDispatchTaskScheduler()};
}

std::expected<Platform, std::string> makeSystemPlatform()
{
    Platform platform;
    platform.kind = PlatformKind::macos;
    platform.time = makePlatformTime();
    platform.power = makeIOPSPowerSource();
    platform.thermal = makeThermalStateMonitor();
    platform.lid = makeLidMonitor();
    platform.sleep = makeSystemSleepObserver();
    platform.assertions = makeIOKitAssertions();
    platform.display = makeMacDisplay();
    platform.session = std::make_unique<MacSession>();
    platform.notifications = makeMacNotificationCenter(*platform.time.mainLoop);
    platform.alarm = makeMacSoundPlayer(*platform.time.mainLoop);
    platform.login = makeMacLoginService();
    platform.shortcut = makeCarbonShortcut(*platform.time.mainLoop);
    platform.appearance = makeMacAppearance();
    platform.updater = makeSparkleUpdater();
    platform.helper = makeMacHelper(*platform.time.mainLoop);
    return platform;
}

} // namespace vespra
