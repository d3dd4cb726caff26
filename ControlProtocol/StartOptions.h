#pragma once

#include "Core/Session/SessionPreferences.h"

#include <optional>

namespace vespra {

/// What somebody asks of one session; whatever is absent is as the user prefers it.
struct StartOptions {
    std::optional<SessionMode> mode{};
    std::optional<Seconds> timerDuration{};
    std::optional<TimeOfDay> untilTime{};
    std::optional<bool> keepsDisplayAwake{};
    std::optional<bool> closedLid{};

    SessionPreferences applied(SessionPreferences preferences) const
    {
        preferences.mode = mode.value_or(preferences.mode);
        preferences.timerDuration = timerDuration.value_or(preferences.timerDuration);
        preferences.untilTime = untilTime.value_or(preferences.untilTime);
        preferences.options.keepsDisplayAwake = keepsDisplayAwake.value_or(preferences.options.keepsDisplayAwake);
        preferences.options.closedLid = closedLid.value_or(preferences.options.closedLid);
        return preferences;
    }

    bool operator==(const StartOptions&) const = default;
};

} // namespace vespra
