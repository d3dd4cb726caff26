#pragma once

#include <chrono>
#include <memory>
#include <string>

class QLocale;

namespace vespra {

/// How the units of a duration are written.
enum class DurationUnits {
    abbreviated, // "1h 30m"
    brief, // between the other two
    full, // "1 hour, 30 minutes"
};

/// Writes durations in hours and minutes, in one locale. Main thread only.
class DurationFormatter {
public:
    virtual ~DurationFormatter() = default;

    /// A unit that is zero is left out, except in "0m". Hours are not grouped into days. `length` is not negative;
    /// empty if it cannot be formatted.
    virtual std::string text(std::chrono::minutes length) const = 0;
};

/// The system's own formatter. One per system.
std::unique_ptr<DurationFormatter> makeDurationFormatter(DurationUnits units, const QLocale& locale);

} // namespace vespra
