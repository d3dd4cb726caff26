#include "Core/Session/CountdownFormat.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace vespra::CountdownFormat {

namespace {

    std::int64_t wholeSeconds(double seconds) { return static_cast<std::int64_t>(std::max(seconds, 0.0)); }

} // namespace

std::string remaining(Seconds length) { return clock(wholeSeconds(std::ceil(length.count()))); }

std::string elapsed(Seconds length) { return clock(wholeSeconds(std::floor(length.count()))); }

std::string clock(std::int64_t seconds)
{
    const auto hours = seconds / 3600, minutes = seconds % 3600 / 60, rest = seconds % 60;
    char text[40];
    if (hours == 0)
        std::snprintf(text, sizeof text, "%" PRId64 ":%02" PRId64, minutes, rest);
    else
        std::snprintf(text, sizeof text, "%" PRId64 ":%02" PRId64 ":%02" PRId64, hours, minutes, rest);
    return text;
}

} // namespace vespra::CountdownFormat
