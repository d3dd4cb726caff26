#include "App/System/macos/MacAdapters.h"

#import <Foundation/Foundation.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

namespace vespra {

namespace {

    constexpr auto activityOptions = NSActivityUserInitiatedAllowingIdleSystemSleep;
    static_assert(activityOptions == 0xEFFFFF);
    static_assert(kIOPMAssertionLevelOn == 255);

    class IOKitAssertions final : public PowerAssertionBackend {
    public:
        ~IOKitAssertions() override { endActivity(); }

        void beginActivity(const std::string& reason) override
        {
            activity_ = [[NSProcessInfo processInfo] beginActivityWithOptions:activityOptions reason:@(reason.c_str())];
        }
        void endActivity() override
        {
            if (activity_)
                [[NSProcessInfo processInfo] endActivity:activity_];
            activity_ = nil;
        }

        std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string& name) override
        {
            NSString* kind = @(rawValue(type).data()); // literals end with a zero
            NSString* text = @(name.c_str());
            IOPMAssertionID assertion = kIOPMNullAssertionID;
            const IOReturn result = IOPMAssertionCreateWithName(
                (__bridge CFStringRef)kind, kIOPMAssertionLevelOn, (__bridge CFStringRef)text, &assertion);
            if (result != kIOReturnSuccess)
                return std::unexpected{result};
            return assertion;
        }
        void release(std::uint32_t id) override { IOPMAssertionRelease(id); }

    private:
        id<NSObject> activity_ = nil;
    };

} // namespace

std::unique_ptr<PowerAssertionBackend> makeIOKitAssertions() { return std::make_unique<IOKitAssertions>(); }

} // namespace vespra
