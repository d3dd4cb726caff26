#pragma once

#include <date/tz.h>

#include <string_view>

namespace vespra {

/// The clock of one time zone. Main thread only.
class ZoneRules {
public:
    virtual ~ZoneRules() = default;

    /// UTC, without looking at any file.
    static const ZoneRules& utc();
    /// The zone of this process: what TZ says, in every form that the C library reads, else /etc/localtime. Taken from
    /// the C library at each call, so that a laptop that travels stays right.
    static const ZoneRules& local();
    /// The zone with this IANA name; nothing for an unknown name, or without a zone database.
    static const ZoneRules* find(std::string_view name);

    /// What clocks show.
    virtual date::local_seconds toLocal(date::sys_seconds date) const = 0;
    /// The first moment at which clocks show `time`; of a time that they skip, the moment of the skip.
    date::sys_seconds firstAt(date::local_seconds time) const;
};

} // namespace vespra
