#include "Core/Scheduling/Instant.h"

#include <date/date.h>

#include <sstream>

namespace vespra {

std::optional<Instant> Instant::fromISO8601(std::string_view text)
{
    std::string offsetForm{text};
    if (offsetForm.ends_with('Z'))
        offsetForm.replace(offsetForm.size() - 1, 1, "+00:00");
    std::istringstream input{offsetForm};
    date::sys_time<std::chrono::microseconds> parsed;
    input >> date::parse("%FT%T%Ez", parsed);
    if (input.fail() || input.peek() != std::char_traits<char>::eof())
        return {};
    if (parsed < date::sys_days{date::January / 1 / 1700} || parsed > date::sys_days{date::January / 1 / 2200})
        return {};
    return Instant{parsed.time_since_epoch()};
}

std::string Instant::iso8601() const
{
    const auto wholeSeconds = date::floor<std::chrono::seconds>(date::sys_time<std::chrono::nanoseconds>{since1970()});
    return date::format("%FT%TZ", wholeSeconds);
}

} // namespace vespra
