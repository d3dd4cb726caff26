#include "Core/Scheduling/Calendar.h"

#include "Core/Scheduling/ZoneRules.h"

namespace vespra {

namespace {

    date::local_seconds localTime(const ZoneRules& zone, Instant instant)
    {
        const date::sys_time<std::chrono::nanoseconds> date{instant.since1970()};
        return zone.toLocal(date::floor<std::chrono::seconds>(date));
    }

    date::local_days localDay(const ZoneRules& zone, Instant instant)
    {
        return date::floor<date::days>(localTime(zone, instant));
    }

    Instant onDay(const ZoneRules& zone, date::local_days day, int hour, int minute)
    {
        const auto time = day + std::chrono::hours{hour} + std::chrono::minutes{minute};
        return Instant{zone.firstAt(time).time_since_epoch()};
    }

} // namespace

const ZoneRules& Calendar::zone() const { return fixedZone_ ? *fixedZone_ : ZoneRules::local(); }

std::expected<Calendar, std::string> Calendar::inZone(std::string_view name)
{
    if (const auto* zone = ZoneRules::find(name))
        return Calendar{zone};
    return std::unexpected{"unknown time zone \"" + std::string{name} + "\""};
}

std::optional<Instant> Calendar::nextDate(Instant after, int hour, int minute) const
{
    const auto& rules = zone();
    const auto today = localDay(rules, after);
    // A zone that jumps over a date line or back can put the next match a day off on either side.
    for (auto day = today - date::days{1}; day <= today + date::days{2}; day += date::days{1})
        if (const auto candidate = onDay(rules, day, hour, minute); candidate > after)
            return candidate;
    return {};
}

Instant Calendar::dateOnDay(Instant day, int hour, int minute) const
{
    const auto& rules = zone();
    return onDay(rules, localDay(rules, day), hour, minute);
}

std::chrono::seconds Calendar::sinceMidnight(Instant instant) const
{
    const auto time = localTime(zone(), instant);
    return time - date::floor<date::days>(time);
}

} // namespace vespra
