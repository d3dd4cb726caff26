#pragma once

#include "Core/Scheduling/Calendar.h"

#include <compare>
#include <cstdint>

namespace vespra {

/// A time on the clock, to the minute.
class TimeOfDay {
public:
    static constexpr std::int64_t stepMinutes = 15;

    /// Clamps: 24:60 is 23:59, -1:-1 is 00:00.
    constexpr TimeOfDay(std::int64_t hour, std::int64_t minute)
        : hour_{clamped(hour, 23)}
        , minute_{clamped(minute, 59)}
    {
    }

    constexpr std::int64_t hour() const { return hour_; } // 0 to 23
    constexpr std::int64_t minute() const { return minute_; } // 0 to 59

    /// The next or previous quarter of an hour, across midnight.
    TimeOfDay stepped(bool forward) const;

    /// When clocks next show this time, strictly after `after` and never more than 24 hours ahead.
    Instant nextOccurrence(Instant after, const Calendar& calendar) const;

    friend constexpr auto operator<=>(const TimeOfDay&, const TimeOfDay&) = default;

private:
    static constexpr std::int64_t clamped(std::int64_t value, std::int64_t highest)
    {
        return value < 0 ? 0 : value > highest ? highest : value;
    }

    std::int64_t hour_;
    std::int64_t minute_;
};

} // namespace vespra
