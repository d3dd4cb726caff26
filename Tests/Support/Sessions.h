#pragma once

#include "Core/Session/SessionEvent.h"
#include "Core/Session/SessionSettings.h"
#include "Tests/Support/FakeMonitors.h"

#include <string>

namespace vespra {

/// Settings under which a session may run on battery.
inline SessionSettings roaming()
{
    SessionSettings settings;
    settings.energy.requiresACPower = false;
    settings.closedLid.continuesOnBattery = true;
    return settings;
}

/// The names of `events` and what they carry: "ended lowBattery 20".
inline std::string summary(const SessionEvents& events)
{
    std::string text;
    for (const auto& event : events) {
        text += text.empty() ? "" : ", ";
        text += caseName(event);
        if (const auto* ended = std::get_if<event::Ended>(&event)) {
            text += " " + std::string{caseName(ended->end.reason)};
            if (const auto* low = std::get_if<end::LowBattery>(&ended->end.reason))
                text += " " + std::to_string(low->level);
        }
    }
    return text;
}

} // namespace vespra
