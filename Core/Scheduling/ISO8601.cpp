#include "Core/Scheduling/Instant.h"

#include <date/date.h>

#include <algorithm>
#include <sstream>

namespace vespra {

namespace {

    /// Whether `text` begins as `pattern` says, in which "0" stands for any digit; takes that off its front.
    bool take(std::string_view& text, std::string_view pattern)
    {
        const auto fits = [](char c, char wanted) { return wanted == '0' ? c >= '0' && c <= '9' : c == wanted; };
        if (text.size() < pattern.size() || !std::ranges::equal(text.substr(0, pattern.size()), pattern, fits))
            return false;
        text.remove_prefix(pattern.size());
        return true;
    }

    /// Checks the form alone: the date library knows which days a month has, but accepts other forms as well.
    bool isISO8601(std::string_view text)
    {
        if (!take(text, "0000-00-00T00:00:00"))
            return false;
        if (take(text, ".0"))
            while (take(text, "0")) {
            }
        const auto zone = text;
        if (zone == "Z")
            return true;
        return (take(text, "+00:00") || take(text, "-00:00")) && text.empty() && zone.substr(1, 2) < "24"
            && zone.substr(4, 2) < "60";
    }

} // namespace

std::optional<Instant> Instant::fromISO8601(std::string_view text)
{
    if (!isISO8601(text))
        return {};
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
