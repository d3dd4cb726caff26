#pragma once

// ControlProtocol: what vespractl and the running application say to each other, and how command lines and their
// values are read.

#include "ControlProtocol/StartOptions.h"
#include "Core/RawValue.h"

#include <expected>
#include <string>
#include <string_view>

namespace vespra {

/// What a terminal or script may ask of the running application. Only `run`, `wait` and `watch` keep the connection:
/// `run` for as long as the command runs for which it is sent, `wait` until no session runs, `watch` for a
/// line after every change.
enum class ControlVerb {
    status,
    describe,
    watch,
    wait,
    run,
    start,
    stop,
    toggle,
    extend,
    keepAwake,
    cancel,
    display,
    closedLid,
    setUpClosedLid,
    removeClosedLid,
    settings,
    set,
    showPanel,
};

template <>
inline constexpr auto rawValues<ControlVerb> = RawValueTable<ControlVerb, 18>{{
    {ControlVerb::status, "status"},
    {ControlVerb::describe, "describe"},
    {ControlVerb::watch, "watch"},
    {ControlVerb::wait, "wait"},
    {ControlVerb::run, "run"},
    {ControlVerb::start, "start"},
    {ControlVerb::stop, "stop"},
    {ControlVerb::toggle, "toggle"},
    {ControlVerb::extend, "extend"},
    {ControlVerb::keepAwake, "keepAwake"},
    {ControlVerb::cancel, "cancel"},
    {ControlVerb::display, "display"},
    {ControlVerb::closedLid, "closedLid"},
    {ControlVerb::setUpClosedLid, "setUpClosedLid"},
    {ControlVerb::removeClosedLid, "removeClosedLid"},
    {ControlVerb::settings, "settings"},
    {ControlVerb::set, "set"},
    {ControlVerb::showPanel, "showPanel"},
}};

/// One request: {"request":"start","mode":"timer","timerDuration":"45m","closedLid":true},
/// {"request":"display","on":false}, {"request":"set","key":"agents.graceDelay","value":"2m"}, {"request":"status"}.
struct ControlRequest {
    ControlVerb verb;
    /// Of `start`, and of `run` without a mode.
    StartOptions start{};
    /// Of `display` and `closedLid`.
    bool on = false;
    /// Of `set`.
    std::string key{};
    std::string value{};

    bool operator==(const ControlRequest&) const = default;
};

namespace controlProtocol {

    /// No request and no line of a reply is longer, in bytes.
    inline constexpr std::size_t longestLine = 65'536;

    /// In the support folder.
    inline constexpr std::string_view socketName = "control.sock";
    std::string defaultPath();

    std::string line(const ControlRequest& request);
    /// Fails with a sentence that names the place.
    std::expected<ControlRequest, std::string> request(std::string_view line);

    /// The kinds of errors in {"error":{"kind":"refused","message":"..."}}.
    inline constexpr std::string_view badRequest = "badRequest";
    inline constexpr std::string_view refused = "refused";
    inline constexpr std::string_view notStored = "notStored";

} // namespace controlProtocol
} // namespace vespra
