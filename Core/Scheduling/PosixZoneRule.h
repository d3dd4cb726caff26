#pragma once

#include <date/tz.h>

#include <memory>
#include <string>

namespace vespra {

/// A rule for daylight saving as POSIX writes it: "CET-1CEST,M3.5.0,M10.5.0/3".
class PosixZoneRule {
public:
    /// Nothing for a text that is no such rule.
    static std::unique_ptr<const PosixZoneRule> parsed(const std::string& text);

    virtual ~PosixZoneRule() = default;
    virtual date::local_seconds toLocal(date::sys_seconds date) const = 0;
};

} // namespace vespra
