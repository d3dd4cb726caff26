#include "Control/Doctor/DoctorReport.h"

#include <array>
#import <Foundation/Foundation.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#include <libproc.h>

namespace vespra::doctor {

namespace {

    constexpr auto service = "IOKit";

    std::string textOf(NSDictionary* assertion, NSString* key)
    {
        const id value = assertion[key];
        return [value isKindOfClass:[NSString class]] ? std::string{[value UTF8String]} : std::string{};
    }

    std::string processName(pid_t pid)
    {
        std::array<char, 64> name{}; // the system gives at most 32
        return proc_name(pid, name.data(), name.size() - 1) > 0 ? name.data() : "";
    }

    /// Those that are switched on; an assertion stays in the list while it is off.
    bool isOn(NSDictionary* assertion)
    {
        const id level = assertion[@"AssertLevel"];
        return ![level isKindOfClass:[NSNumber class]] || [level intValue] != kIOPMAssertionLevelOff;
    }

    /// What each process holds; absent if the system does not tell.
    std::optional<std::vector<Inhibitor>> assertions()
    {
        CFDictionaryRef copied = nullptr;
        if (IOPMCopyAssertionsByProcess(&copied) != kIOReturnSuccess || !copied)
            return {};
        NSDictionary<NSNumber*, NSArray<NSDictionary*>*>* byProcess = CFBridgingRelease(copied);
        std::vector<Inhibitor> all;
        for (NSNumber* pid in byProcess)
            for (NSDictionary* assertion in byProcess[pid])
                if (isOn(assertion))
                    all.push_back({.service = service,
                        .what = textOf(assertion, @"AssertType"),
                        .who = processName(pid.intValue),
                        .why = textOf(assertion, @"AssertName"),
                        .mode = {},
                        .pid = pid.intValue,
                        .uid = {},
                        .process = processName(pid.intValue)});
        return all;
    }

} // namespace

Facts gatherFacts(const std::optional<SessionMarker::Session>& /*session*/)
{
    @autoreleasepool {
        const auto held = assertions();
        return {
            .facilities = {{.name = "Idle sleep and display", .mechanism = "IOKit power assertions", .reading = {}},
                {.name = "Power source", .mechanism = "IOKit power sources", .reading = {}},
                {.name = "Heat", .mechanism = "the thermal state of the system", .reading = {}},
                {.name = "Lid and displays", .mechanism = "IOPMrootDomain and CoreGraphics", .reading = {}}},
            .inhibitors = held.value_or(std::vector<Inhibitor>{}),
            .keepers = {{.service = service, .what = "PreventUserIdleSystemSleep", .tellsAll = held.has_value()}},
            .threats = {"Closing the lid: the Mac sleeps, unless closed-lid mode is in force or it has power and an "
                        "external display.",
                "Sleep chosen in a menu or by a key: nothing prevents that, and nothing should."},
        };
    }
}

} // namespace vespra::doctor
