#include "Control/Doctor/DoctorReport.h"

namespace vespra::doctor {

/// The system's own `pmset -g assertions` lists what is held, with the process of each.
Facts gatherFacts(const std::optional<SessionMarker::Session>&)
{
    return {
        .facilities = {{.name = "Idle sleep and display", .mechanism = "IOKit power assertions", .reading = {}},
            {.name = "Power source", .mechanism = "IOKit power sources", .reading = {}},
            {.name = "Heat", .mechanism = "the thermal state of the system", .reading = {}},
            {.name = "Lid and displays", .mechanism = "IOPMrootDomain and CoreGraphics", .reading = {}}},
        .inhibitors = {},
        .threats = {"Run `pmset -g assertions` to see what is held: this program does not read it here."},
        .listingService = {},
    };
}

} // namespace vespra::doctor
