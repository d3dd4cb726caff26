#pragma once

#include "ControlProtocol/ControlRequest.h"
#include "Core/Coding/JSON.h"

namespace vespra {

class AppModel;

/// Carries out what terminals and scripts ask of the application. Main thread only.
class ControlService {
public:
    /// `model` outlives it.
    explicit ControlService(AppModel& model)
        : model_{model}
    {
    }

    /// The reply to any request but `run`, `watch` and `wait`: {"status":{...}}, {"lines":[...]}, {"settings":{...}},
    /// {"done":{"isActive":true,"message":"Awake until 18:30."}}, or the error of a refusal; then nothing has changed.
    /// What cannot be stored is an error too, but it counts.
    JSON reply(const ControlRequest& request);

    /// How closed-lid mode stands is part of the reply that has just been made to `request`, and may take a moment.
    bool tellsClosedLid(const ControlRequest& request) const;
    /// It is still being found out. Followed by an observation loop that asks.
    bool isClosedLidSettling(const ControlRequest& request) const;
    /// `reply` with how it stands now, unless it is in force, or ready for the next session: {"done":{"isActive":true,
    /// "closedLid":{"message":"Closed lid: Not set up","isPossible":false}}}; or the error of a component that could
    /// not be removed.
    JSON withClosedLid(const ControlRequest& request, JSON reply) const;

    /// {"status":{...}}: how everything stands. Followed by an observation loop that asks.
    JSON status() const;
    /// {"ended":{"reason":"timeElapsed","at":"...","message":"Time is up"}}, without a reason if none ever ran;
    /// absent while a session runs. Followed as well.
    std::optional<JSON> ended() const;

    static JSON error(std::string_view kind, const std::string& message);
    JSON done(const std::string& message = {}) const;

private:
    void readConnections() const;
    JSON start(const SessionPreferences& preferences);
    JSON toggle();
    JSON extend();
    JSON keepAwake();
    JSON setClosedLid(bool on);
    JSON settings() const;
    JSON set(const std::string& key, const std::string& value);
    JSON describe() const;
    /// The same for a session that has just been started.
    JSON started() const;
    /// The same after something was to be kept, or that it is not.
    JSON kept() const;
    /// Why the session that was just asked for does not run.
    JSON refusal(const SessionPreferences& preferences) const;

    AppModel& model_;
};

} // namespace vespra
