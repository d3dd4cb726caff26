#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"

#import <AppKit/AppKit.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

namespace vespra {

namespace {

    class MacDisplay final : public DisplayControl {
    public:
        MacDisplay()
            : screensDidWake_{
                  [NSWorkspace sharedWorkspace].notificationCenter, NSWorkspaceScreensDidWakeNotification, [this] {
                      mainThread::check();
                      notify(onScreensWake);
                  }}
        {
        }

        std::expected<void, std::string> turnOff() override
        {
            NSTask* command = [[NSTask alloc] init];
            command.executableURL = [NSURL fileURLWithPath:@"/usr/bin/pmset"];
            command.arguments = @[ @"displaysleepnow" ];
            NSError* error = nil;
            if ([command launchAndReturnError:&error])
                return {};
            return std::unexpected{std::string{error.localizedDescription.UTF8String}};
        }

        std::expected<void, int> wake(const std::string& name) override
        {
            NSString* text = @(name.c_str());
            IOPMAssertionID assertion = kIOPMNullAssertionID;
            const IOReturn result
                = IOPMAssertionDeclareUserActivity((__bridge CFStringRef)text, kIOPMUserActiveLocal, &assertion);
            if (result != kIOReturnSuccess)
                return std::unexpected{result};
            IOPMAssertionRelease(assertion);
            return {};
        }

        /// The system tells of it anyway.
        void setWatchesWaking(bool) override { }

    private:
        NotificationObserver screensDidWake_;
    };

} // namespace

std::unique_ptr<DisplayControl> makeMacDisplay() { return std::make_unique<MacDisplay>(); }

} // namespace vespra
