#include "Helper/LedgerFile.h"
#include "Helper/macos/MacMachine.h"
#include "Helper/macos/MainQueueWatchdog.h"
#include "Helper/macos/XPCService.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/Process.h"
#include "Host/macos/DispatchTaskScheduler.h"

#import <Foundation/Foundation.h>

#include <csignal>

namespace {

using namespace vespra;

constexpr auto stateDirectory = "/Library/Application Support/VespraHelper";
bool hasEnded = false;

/// How long to stay without anything to do; launchd starts the daemon again when somebody calls.
constexpr Seconds idleTimeout = 60s;

/// Called on the main queue; the loop ends after the current turn.
void endRunLoop() { hasEnded = true; }

/// A run loop drains no autorelease pool by itself, and the daemon may stay for days.
void runLoop()
{
    while (!hasEnded) {
        @autoreleasepool {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e9, true);
        }
    }
}

int run()
{
    const SystemLog log{Brand::appBundleID(), "helper"};
    LedgerFile ledger{stateDirectory};
    if (!ledger.claim()) {
        log.error("Démarrage impossible : un autre helper est déjà à l'œuvre");
        return EXIT_FAILURE;
    }
    signal(SIGTERM, SIG_IGN);
    dispatch_source_t termination
        = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, SIGTERM, 0, dispatch_get_main_queue());
    dispatch_source_set_event_handler(termination, ^{
        endRunLoop();
    });
    dispatch_resume(termination);

    const auto tasks = makeDispatchTaskScheduler();
    SystemClock clock;
    MacSleepSetting setting;
    MacPower power;
    SignedCallers authorization;
    HelperDaemon daemon{{setting, ledger, power, authorization, *tasks, clock}};
    MainQueueWatchdog watchdog;
    std::unique_ptr<ScheduledTask> idleExit;
    const auto update = [&] {
        watchdog.setWatches(!daemon.isIdle());
        idleExit = daemon.isIdle() ? tasks->schedule(idleTimeout, endRunLoop) : nullptr;
    };
    daemon.onChange = update;
    {
        const XPCService service{daemon, update};
        update();
        runLoop();
    }
    daemon.onChange = nullptr;
    return EXIT_SUCCESS;
}

} // namespace

int main()
{
    process::openStandardDescriptors();
    @autoreleasepool {
        return run();
    }
}
