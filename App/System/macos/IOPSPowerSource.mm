#include "App/System/macos/MacAdapters.h"
#include "App/System/Reading.h"
#include "Core/Scheduling/MainThread.h"

#import <Foundation/Foundation.h>
#import <IOKit/ps/IOPowerSources.h>

namespace vespra {

namespace {

    PowerSourceValue value(id object)
    {
        if ([object isKindOfClass:[NSString class]])
            return std::string{[static_cast<NSString*>(object) UTF8String]};
        if (![object isKindOfClass:[NSNumber class]])
            return {};
        const auto number = (__bridge CFNumberRef) static_cast<NSNumber*>(object);
        // A Boolean is an NSNumber too.
        if (CFGetTypeID(number) != CFNumberGetTypeID() || CFNumberIsFloatType(number))
            return {};
        return static_cast<std::int64_t>([static_cast<NSNumber*>(object) longLongValue]);
    }

    PowerSourceDescription description(NSDictionary* about)
    {
        PowerSourceDescription fields;
        for (id key in about)
            if ([key isKindOfClass:[NSString class]])
                fields.emplace([static_cast<NSString*>(key) UTF8String], value(about[key]));
        return fields;
    }

    PowerSnapshot read()
    {
        id info = CFBridgingRelease(IOPSCopyPowerSourcesInfo());
        if (!info)
            return PowerSnapshot::desktop();
        const auto blob = (__bridge CFTypeRef)info;
        std::optional<std::string> providingType;
        if (NSString* type = (__bridge NSString*)IOPSGetProvidingPowerSourceType(blob))
            providingType = type.UTF8String;
        std::vector<PowerSourceDescription> sources;
        id list = CFBridgingRelease(IOPSCopyPowerSourcesList(blob));
        if ([list isKindOfClass:[NSArray class]])
            for (id source in static_cast<NSArray*>(list)) {
                id about = (__bridge id)IOPSGetPowerSourceDescription(blob, (__bridge CFTypeRef)source);
                if ([about isKindOfClass:[NSDictionary class]])
                    sources.push_back(description(about));
            }
        return powerSnapshot(providingType, sources);
    }

    class IOPSPowerSource final : public PowerSourceMonitoring {
    public:
        IOPSPowerSource()
            : reading_{read()}
            , source_{IOPSNotificationCreateRunLoopSource(
                  [](void* context) { static_cast<IOPSPowerSource*>(context)->refresh(); }, this)}
        {
            if (source_)
                CFRunLoopAddSource(CFRunLoopGetMain(), source_, kCFRunLoopDefaultMode);
        }
        ~IOPSPowerSource() override
        {
            if (!source_)
                return;
            CFRunLoopRemoveSource(CFRunLoopGetMain(), source_, kCFRunLoopDefaultMode);
            CFRelease(source_);
        }
        PowerSnapshot snapshot() const override { return reading_.value(); }

    private:
        void refresh()
        {
            mainThread::check();
            reading_.update(read(), onChange);
        }

        Reading<PowerSnapshot> reading_;
        CFRunLoopSourceRef source_;
    };

} // namespace

std::unique_ptr<PowerSourceMonitoring> makeIOPSPowerSource() { return std::make_unique<IOPSPowerSource>(); }

} // namespace vespra
