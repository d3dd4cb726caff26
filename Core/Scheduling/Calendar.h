#pragma once

#include "Core/Scheduling/Instant.h"

#include <expected>
#include <string>
#include <string_view>

namespace vespra {

class ZoneRules;

/// The Gregorian calendar in a time zone: turns times of day into dates. Main thread only.
class Calendar {
public:
    /// Follows the system's time zone, looked up at each use: a laptop that travels stays right. TZ in the
    /// environment counts first if it names a zone; without any usable zone it is UTC.
    static Calendar current() { return Calendar{nullptr}; }

    /// The calendar of an IANA zone such as "Europe/Paris". Fails with a sentence for an unknown name.
    static std::expected<Calendar, std::string> inZone(std::string_view name);

    /// The first date strictly after `after` on which clocks show `hour`:`minute`:00. On a day that skips this time
    /// it is the next time that exists; of a time that comes twice in a day it is the first. Absent if no day within
    /// reach has one.
    std::optional<Instant> nextDate(Instant after, int hour, int minute) const;

    /// The same time on the day that `day` falls on; by the same rules for skipped and repeated times.
    Instant dateOnDay(Instant day, int hour, int minute) const;

    /// The zone in force now: "Europe/Paris".
    std::string zoneName() const;

    friend bool operator==(const Calendar&, const Calendar&) = default;

private:
    explicit Calendar(const ZoneRules* fixed)
        : fixedZone_{fixed}
    {
    }

    const ZoneRules& zone() const;

    /// Nothing: the system's zone.
    const ZoneRules* fixedZone_;
};

} // namespace vespra
