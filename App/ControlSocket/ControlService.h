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
    /// A change that takes effect but cannot be stored is an error too.
    JSON reply(const ControlRequest& request);

    /// Whether the reply just made to `request` is to include the outcome of closed-lid mode, which may take a moment.
    bool tellsClosedLid(const ControlRequest& request) const;
    /// Whether that outcome is still open. An observation loop that calls this follows it.
    bool isClosedLidSettling(const ControlRequest& request) const;
    /// `reply` with the state of closed-lid mode, unless that is in force or ready for the next session:
    /// {"done":{"isActive":true,"closedLid":{"message":"Closed lid: Not set up","isPossible":false}}}; or the error of
    /// a component that could not be removed.
    JSON withClosedLid(const ControlRequest& request, JSON reply) const;

    /// {"status":{...}}: the state of everything. An observation loop that calls this follows it.
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
    /// `done` with a message about the session that has just been started.
    JSON started() const;
    /// `done`, or the error that the change takes effect but could not be stored.
    JSON kept() const;
    /// The error that says why the requested session does not run.
    JSON refusal(const SessionPreferences& preferences) const;

    AppModel& model_;
};

} // namespace vespra
