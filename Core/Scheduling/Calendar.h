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
    /// Follows this process's time zone as the C library sees it, looked up at each use: a laptop that travels stays
    /// right. Every form of TZ counts, and a copied /etc/localtime as well as a linked one.
    static Calendar current() { return Calendar{nullptr}; }

    /// The calendar of an IANA zone such as "Europe/Paris". Fails with a sentence for an unknown name.
    static std::expected<Calendar, std::string> inZone(std::string_view name);

    /// The first date strictly after `after` on which clocks show `hour`:`minute`:00. On a day that skips this time
    /// it is the next time that exists; of a time that comes twice in a day it is the first. Absent if no day within
    /// reach has one.
    std::optional<Instant> nextDate(Instant after, int hour, int minute) const;

    /// The same time on the day that `day` falls on; by the same rules for skipped and repeated times.
    Instant dateOnDay(Instant day, int hour, int minute) const;

    /// What clocks show at `instant`, as seconds after 00:00:00: 0 to 86399.
    std::chrono::seconds sinceMidnight(Instant instant) const;

    friend bool operator==(const Calendar&, const Calendar&) = default;

private:
    explicit Calendar(const ZoneRules* fixed)
        : fixedZone_{fixed}
    {
    }

    const ZoneRules& zone() const;

    /// Nothing: the process's zone.
    const ZoneRules* fixedZone_;
};

} // namespace vespra
