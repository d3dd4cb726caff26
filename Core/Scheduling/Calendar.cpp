#include "Core/Scheduling/Calendar.h"

#include <date/tz.h>

#include <cstdlib>
#include <stdexcept>

namespace vespra {

namespace {

    using LocalSeconds = date::local_seconds;
    using SystemNanoseconds = date::sys_time<std::chrono::nanoseconds>;

    /// Absent without a zone database or for a name it lacks.
    const date::time_zone* findZone(std::string_view name)
    {
        try {
            return date::locate_zone(std::string{name});
        } catch (const std::exception&) {
            return nullptr;
        }
    }

    /// The zone that TZ names, as POSIX writes it: "Europe/Paris" or ":Europe/Paris".
    const date::time_zone* environmentZone()
    {
        const char* value = std::getenv("TZ");
        if (!value)
            return nullptr;
        std::string_view name{value};
        if (name.starts_with(':'))
            name.remove_prefix(1);
        return name.empty() ? nullptr : findZone(name);
    }

    const date::time_zone* systemZone()
    {
        if (const auto* zone = environmentZone())
            return zone;
        try {
            return date::current_zone();
        } catch (const std::exception&) {
            return findZone("Etc/UTC");
        }
    }

    const date::time_zone* inForce(const date::time_zone* fixed) { return fixed ? fixed : systemZone(); }

    /// Without any zone database local time is UTC.
    date::local_days localDay(const date::time_zone* zone, Instant instant)
    {
        const SystemNanoseconds date{instant.since1970()};
        if (!zone)
            return date::local_days{date::floor<date::days>(date).time_since_epoch()};
        return date::floor<date::days>(zone->to_local(date));
    }

    Instant firstOnOrAfter(const date::time_zone* zone, LocalSeconds time)
    {
        if (!zone)
            return Instant{time.time_since_epoch()};
        return Instant{zone->to_sys(time, date::choose::earliest).time_since_epoch()};
    }

    LocalSeconds timeOnDay(date::local_days day, int hour, int minute)
    {
        return day + std::chrono::hours{hour} + std::chrono::minutes{minute};
    }

} // namespace

std::expected<Calendar, std::string> Calendar::inZone(std::string_view name)
{
    if (const auto* zone = findZone(name))
        return Calendar{zone};
    return std::unexpected{"unknown time zone \"" + std::string{name} + "\""};
}

std::optional<Instant> Calendar::nextDate(Instant after, int hour, int minute) const
{
    const auto* zone = inForce(fixedZone_);
    const auto today = localDay(zone, after);
    // A zone that jumps over a date line or back can put the next match a day off on either side.
    for (auto day = today - date::days{1}; day <= today + date::days{2}; day += date::days{1})
        if (const auto candidate = firstOnOrAfter(zone, timeOnDay(day, hour, minute)); candidate > after)
            return candidate;
    return {};
}

Instant Calendar::dateOnDay(Instant day, int hour, int minute) const
{
    const auto* zone = inForce(fixedZone_);
    return firstOnOrAfter(zone, timeOnDay(localDay(zone, day), hour, minute));
}

std::string Calendar::zoneName() const
{
    const auto* zone = inForce(fixedZone_);
    return zone ? zone->name() : "UTC";
}

} // namespace vespra
