#pragma once

#include "Core/Coding/JSONSource.h"
#include "Core/Match.h"
#include "Core/Session/TimeOfDay.h"

#include <optional>

namespace vespra {

/// The kinds of plan among which the user chooses.
enum class SessionMode { timer, until, unlimited, agent };

template <>
inline constexpr auto rawValues<SessionMode> = RawValueTable<SessionMode, 4>{{
    {SessionMode::timer, "timer"},
    {SessionMode::until, "until"},
    {SessionMode::unlimited, "unlimited"},
    {SessionMode::agent, "agent"},
}};

namespace plan {
    struct Timer {
        static constexpr std::string_view name = "timer";
        Seconds duration; // any value; clamped when the end is planned
        bool operator==(const Timer&) const = default;
    };
    struct Until {
        static constexpr std::string_view name = "until";
        TimeOfDay time;
        bool operator==(const Until&) const = default;
    };
    struct Unlimited : Case {
        static constexpr std::string_view name = "unlimited";
    };
    /// Ends when the coding agents have finished.
    struct Agent {
        static constexpr std::string_view name = "agent";
        std::optional<Seconds> safetyCap; // the latest end; absent: none
        bool operator==(const Agent&) const = default;
    };
} // namespace plan

/// How a session ends on its own.
using SessionPlan = std::variant<plan::Timer, plan::Until, plan::Unlimited, plan::Agent>;

SessionMode mode(const SessionPlan& plan);
bool isExtendable(const SessionPlan& plan);
/// Absent for a plan without an end of its own.
std::optional<Instant> plannedEnd(const SessionPlan& plan, Instant start, const Calendar& calendar);

JSON toJSON(TimeOfDay time);
JSON toJSON(const SessionPlan& plan);
/// Both read within `decoded`.
TimeOfDay readTimeOfDay(const JSONSource& source);
SessionPlan readSessionPlan(const JSONSource& source);

} // namespace vespra
