#pragma once

#include "Core/Session/SessionOptions.h"
#include "Core/Session/SessionPlan.h"

namespace vespra {

/// What the start panel remembers between launches.
struct SessionPreferences {
    SessionMode mode = SessionMode::timer;
    Seconds timerDuration = 1h;
    TimeOfDay untilTime{18, 0};
    SessionOptions options;

    /// The plan to start. `agentSafetyCap`, absent for none, is used for agent plans only.
    SessionPlan plan(std::optional<Seconds> agentSafetyCap) const;

    bool operator==(const SessionPreferences&) const = default;
};

JSON toJSON(const SessionPreferences& preferences);
/// Fails with the place of the first fault; every key is required.
std::expected<SessionPreferences, DecodingError> sessionPreferences(const JSON& json);

} // namespace vespra
