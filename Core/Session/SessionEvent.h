#pragma once

#include "Core/ClosedLid/ClosedLidBlocker.h"
#include "Core/Session/SessionState.h"

#include <vector>

namespace vespra {

namespace refusal {
    using blocker::BatteryTooLow;
    using blocker::ChargerRequired;
    using blocker::TooHot;
    struct AlreadyActive : Case {
        static constexpr std::string_view name = "alreadyActive";
    };
} // namespace refusal

/// Why a session, or closed-lid mode in it, may not start.
using StartRefusal
    = std::variant<refusal::BatteryTooLow, refusal::AlreadyActive, refusal::ChargerRequired, refusal::TooHot>;

namespace event {
    struct Started {
        static constexpr std::string_view name = "started";
        ActiveSession session;
        bool operator==(const Started&) const = default;
    };
    struct Extended {
        static constexpr std::string_view name = "extended";
        Instant endsAt;
        bool operator==(const Extended&) const = default;
    };
    struct EndingSoon {
        static constexpr std::string_view name = "endingSoon";
        Instant endsAt;
        bool operator==(const EndingSoon&) const = default;
    };
    struct Ended {
        static constexpr std::string_view name = "ended";
        SessionEnd end;
        bool operator==(const Ended&) const = default;
    };
    /// The machine runs hot while the lid is open; the session goes on.
    struct OverheatingWarning : Case {
        static constexpr std::string_view name = "overheatingWarning";
    };
} // namespace event

/// What happened to a session, for the one who acts on it: notifications, the terminal, the end action.
using SessionEvent
    = std::variant<event::Started, event::Extended, event::EndingSoon, event::Ended, event::OverheatingWarning>;
using SessionEvents = std::vector<SessionEvent>;

} // namespace vespra
