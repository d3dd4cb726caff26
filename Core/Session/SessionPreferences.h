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

    /// The plan to start. `agentSafetyCap` goes into an agent plan as it is.
    SessionPlan plan(std::optional<Seconds> agentSafetyCap) const;

    bool operator==(const SessionPreferences&) const = default;
};

JSON toJSON(const SessionPreferences& preferences);
/// Every key is required.
std::expected<SessionPreferences, DecodingError> sessionPreferences(const JSON& json);

} // namespace vespra
