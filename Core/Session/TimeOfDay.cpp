#include "Core/Session/TimeOfDay.h"

#include <algorithm>

namespace vespra {

TimeOfDay TimeOfDay::stepped(bool forward) const
{
    constexpr std::int64_t minutesPerHour = 60, minutesPerDay = 24 * minutesPerHour;
    const auto minutes = hour_ * minutesPerHour + minute_;
    const auto stepsUp = (minutes + stepMinutes - 1) / stepMinutes;
    const auto next = forward ? (minutes / stepMinutes + 1) * stepMinutes : (stepsUp - 1) * stepMinutes;
    const auto wrapped = (next + minutesPerDay) % minutesPerDay;
    return {wrapped / minutesPerHour, wrapped % minutesPerHour};
}

Instant TimeOfDay::nextOccurrence(Instant after, const Calendar& calendar) const
{
    const auto latest = after + 24h;
    const auto found = calendar.nextDate(after, static_cast<int>(hour_), static_cast<int>(minute_));
    return std::min(found.value_or(latest), latest);
}

} // namespace vespra
