#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vespra {

using namespace std::chrono_literals;

/// A length of time in seconds, with fractions.
using Seconds = std::chrono::duration<double>;

/// An absolute date, kept to the nanosecond so that sums of decimal fractions compare as they read.
/// Arithmetic saturates at the ends of the range, about the years 1678 and 2262.
class Instant {
public:
    /// 1970-01-01T00:00:00Z.
    constexpr Instant() = default;
    constexpr explicit Instant(std::chrono::nanoseconds since1970)
        : nanoseconds_{since1970.count()}
    {
    }

    /// Later than every date that anything plans.
    static constexpr Instant distantFuture() { return Instant{std::chrono::nanoseconds::max()}; }

    /// The form in which dates stand in JSON: seconds since 2001-01-01T00:00:00Z.
    static Instant fromReferenceDate(Seconds sinceReferenceDate);
    Seconds sinceReferenceDate() const;

    /// Reads "2026-01-31T09:15:00Z", also with a fraction of the second (to the microsecond) or an offset such as
    /// "+01:00". Absent for any other text and outside the years 1700 to 2199.
    static std::optional<Instant> fromISO8601(std::string_view text);
    /// UTC, whole seconds rounded down: "2026-01-31T09:15:00Z".
    std::string iso8601() const;

    constexpr std::chrono::nanoseconds since1970() const { return std::chrono::nanoseconds{nanoseconds_}; }

    friend constexpr auto operator<=>(Instant, Instant) = default;
    /// The length is rounded to the nanosecond.
    friend Instant operator+(Instant instant, Seconds length);
    friend Instant operator-(Instant instant, Seconds length) { return instant + -length; }
    friend Seconds operator-(Instant later, Instant earlier);

private:
    std::int64_t nanoseconds_ = 0;
};

} // namespace vespra
