#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "App/System/Reading.h"
#include "Core/Scheduling/MainThread.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/pwr_mgt/IOPM.h>

#include <vector>

namespace vespra {

namespace {

    constexpr std::uint32_t clamshellStateChange = 0xE0034100;
    static_assert(clamshellStateChange == kIOPMMessageClamshellStateChange);

    io_service_t powerRootDomain()
    {
        return IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPMrootDomain"));
    }

    bool lidIsClosed()
    {
        const auto root = powerRootDomain();
        if (root == IO_OBJECT_NULL)
            return false;
        id state = CFBridgingRelease(
            IORegistryEntryCreateCFProperty(root, CFSTR("AppleClamshellState"), kCFAllocatorDefault, 0));
        IOObjectRelease(root);
        return state && CFGetTypeID((__bridge CFTypeRef)state) == CFBooleanGetTypeID() && [state boolValue];
    }

    bool hasExternalDisplay()
    {
        std::uint32_t count = 0;
        if (CGGetActiveDisplayList(0, nullptr, &count) != kCGErrorSuccess || count == 0)
            return false;
        std::vector<CGDirectDisplayID> displays(count);
        if (CGGetActiveDisplayList(count, displays.data(), &count) != kCGErrorSuccess)
            return false;
        displays.resize(count);
        for (const auto display : displays)
            if (!CGDisplayIsBuiltin(display))
                return true;
        return false;
    }

    bool read() { return lidIsClosed() && !hasExternalDisplay(); }

    class LidMonitor final : public LidMonitoring {
    public:
        LidMonitor()
            : reading_{read()}
            , screens_{[NSNotificationCenter defaultCenter],
                  NSApplicationDidChangeScreenParametersNotification,
                  [this] { refresh(); }}
        {
            const auto root = powerRootDomain();
            if (root == IO_OBJECT_NULL)
                return;
            port_ = IONotificationPortCreate(kIOMainPortDefault);
            CFRunLoopAddSource(CFRunLoopGetMain(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopCommonModes);
            const auto received = [](void* context, io_service_t, std::uint32_t type, void*) {
                if (type == clamshellStateChange)
                    static_cast<LidMonitor*>(context)->refresh();
            };
            IOServiceAddInterestNotification(port_, root, "IOGeneralInterest", received, this, &interest_);
            IOObjectRelease(root);
        }
        ~LidMonitor() override
        {
            if (interest_ != IO_OBJECT_NULL)
                IOObjectRelease(interest_);
            if (port_)
                IONotificationPortDestroy(port_);
        }

        bool isClosedWithoutExternalDisplay() const override { return reading_.value(); }
        bool isLidClosed() const override { return lidIsClosed(); }

    private:
        void refresh()
        {
            mainThread::check();
            reading_.update(read(), onChange);
        }

        Reading<bool> reading_;
        NotificationObserver screens_;
        IONotificationPortRef port_ = nullptr;
        io_object_t interest_ = IO_OBJECT_NULL;
    };

} // namespace

std::unique_ptr<LidMonitoring> makeLidMonitor() { return std::make_unique<LidMonitor>(); }

} // namespace vespra
