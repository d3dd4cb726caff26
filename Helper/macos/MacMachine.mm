#include "Helper/macos/MacMachine.h"

#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/pwr_mgt/IOPMLib.h>

// In no public header; pmset uses them.
extern "C" {
IOReturn IOPMSetSystemPowerSetting(CFStringRef key, CFTypeRef value);
CFDictionaryRef IOPMCopySystemPowerSettings(void);
}

namespace vespra {

namespace {

    constexpr auto settingKey = @"SleepDisabled";

    /// Absent if the power management does not say.
    std::optional<bool> rootDomainFlag(CFStringRef key)
    {
        const auto root = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPMrootDomain"));
        if (root == IO_OBJECT_NULL)
            return {};
        const id value = CFBridgingRelease(IORegistryEntryCreateCFProperty(root, key, kCFAllocatorDefault, 0));
        IOObjectRelease(root);
        if (![value isKindOfClass:[NSNumber class]])
            return {};
        return [value boolValue];
    }

} // namespace

std::expected<bool, std::string> MacSleepSetting::isSleepDisabled()
{
    // Null: no system-wide setting has ever been changed.
    NSDictionary* settings = CFBridgingRelease(IOPMCopySystemPowerSettings());
    id value = settings[settingKey];
    if (value && ![value isKindOfClass:[NSNumber class]])
        return std::unexpected{"SleepDisabled n'est pas un booléen"};
    return [value boolValue] == YES;
}

HelperResult MacSleepSetting::setSleepDisabled(bool disabled)
{
    const auto result
        = IOPMSetSystemPowerSetting((__bridge CFStringRef)settingKey, disabled ? kCFBooleanTrue : kCFBooleanFalse);
    if (result != kIOReturnSuccess)
        return std::unexpected{"IOPMSetSystemPowerSetting : " + std::to_string(result)};
    return {};
}

HelperResult MacPower::suspend()
{
    const auto root = IOPMFindPowerManagement(MACH_PORT_NULL);
    if (root == IO_OBJECT_NULL)
        return std::unexpected{"IOPMFindPowerManagement"};
    const auto result = IOPMSleepSystem(root);
    IOServiceClose(root);
    if (result != kIOReturnSuccess)
        return std::unexpected{"IOPMSleepSystem : " + std::to_string(result)};
    return {};
}

HelperResult MacPower::powerOff()
{
    NSError* error = nil;
    NSURL* shutdown = [NSURL fileURLWithPath:@"/sbin/shutdown"];
    if (![NSTask launchedTaskWithExecutableURL:shutdown
                                     arguments:@[ @"-h", @"now" ]
                                         error:&error
                            terminationHandler:nil])
        return std::unexpected{std::string{"/sbin/shutdown : "} + (error ? error.localizedDescription.UTF8String : "")};
    return {};
}

bool MacPower::shouldSleepForLid()
{
    // The kernel's own verdict takes external displays into account.
    return rootDomainFlag(CFSTR("AppleClamshellState")).value_or(false)
        && rootDomainFlag(CFSTR("AppleClamshellCausesSleep")).value_or(true);
}

} // namespace vespra
