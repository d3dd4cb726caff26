#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"

#import <AppKit/AppKit.h>

namespace vespra {

namespace {

    class SystemSleepObserver final : public SystemSleepObserving {
    public:
        SystemSleepObserver()
            : willSleep_{[NSWorkspace sharedWorkspace].notificationCenter,
                  NSWorkspaceWillSleepNotification,
                  [this] {
                      mainThread::check();
                      notify(onWillSleep);
                  }}
            , didWake_{[NSWorkspace sharedWorkspace].notificationCenter, NSWorkspaceDidWakeNotification, [this] {
                           mainThread::check();
                           notify(onDidWake);
                       }}
        {
        }

    private:
        NotificationObserver willSleep_;
        NotificationObserver didWake_;
    };

} // namespace

std::unique_ptr<SystemSleepObserving> makeSystemSleepObserver() { return std::make_unique<SystemSleepObserver>(); }

} // namespace vespra
