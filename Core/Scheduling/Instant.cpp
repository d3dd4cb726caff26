#include "Core/Scheduling/Instant.h"

#include <cmath>
#include <limits>

namespace vespra {

namespace {

    constexpr double nanosecondsPerSecond = 1e9;
    /// 2001-01-01T00:00:00Z.
    constexpr Instant referenceDate{978'307'200s};

    std::int64_t saturatedNanoseconds(Seconds length)
    {
        constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
        constexpr auto highest = std::numeric_limits<std::int64_t>::max();
        const double nanoseconds = std::round(length.count() * nanosecondsPerSecond);
        if (nanoseconds >= static_cast<double>(highest))
            return highest;
        if (nanoseconds <= static_cast<double>(lowest))
            return lowest;
        return static_cast<std::int64_t>(nanoseconds);
    }

} // namespace

Instant operator+(Instant instant, Seconds length)
{
    const auto added = saturatedNanoseconds(length);
    std::int64_t sum = 0;
    if (__builtin_add_overflow(instant.nanoseconds_, added, &sum))
        sum = added < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    return Instant{std::chrono::nanoseconds{sum}};
}

Seconds operator-(Instant later, Instant earlier)
{
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(later.nanoseconds_, earlier.nanoseconds_, &difference))
        return Seconds{(static_cast<double>(later.nanoseconds_) - static_cast<double>(earlier.nanoseconds_))
            / nanosecondsPerSecond};
    return Seconds{static_cast<double>(difference) / nanosecondsPerSecond};
}

Instant Instant::fromReferenceDate(Seconds sinceReferenceDate) { return referenceDate + sinceReferenceDate; }

Seconds Instant::sinceReferenceDate() const { return *this - referenceDate; }

} // namespace vespra
