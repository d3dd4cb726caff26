#include "ControlProtocol/Arguments.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace vespra::arguments {

namespace {

    /// A whole number at the front of `text`, which is taken off it; absent without one.
    std::optional<std::int64_t> takeNumber(std::string_view& text)
    {
        std::int64_t number = 0;
        const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc{} || text.front() == '-')
            return {};
        text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
        return number;
    }

    std::optional<Seconds> unit(char letter)
    {
        switch (letter) {
        case 'h':
            return 1h;
        case 'm':
            return 1min;
        case 's':
            return 1s;
        default:
            return {};
        }
    }

    std::optional<Seconds> sumOfParts(std::string_view text)
    {
        Seconds sum{};
        auto previousUnit = Seconds::max();
        while (!text.empty()) {
            const auto number = takeNumber(text);
            const auto length = number && !text.empty() ? unit(text.front()) : std::nullopt;
            if (!length || *length >= previousUnit)
                return {};
            sum += static_cast<double>(*number) * *length;
            previousUnit = *length;
            text.remove_prefix(1);
        }
        return sum;
    }

    /// " such as 25m or 1h30m", as far as that lies within `range`.
    std::string examples(ClosedRange<Seconds> range)
    {
        std::string list;
        int count = 0;
        for (const Seconds each : {Seconds{25min}, Seconds{90min}, Seconds{2min}, Seconds{30s}})
            if (each >= range.lowest && each <= range.highest && ++count <= 2)
                list += (list.empty() ? ", such as " : " or ") + lengthText(each);
        return list;
    }

} // namespace

std::string lengthText(Seconds length)
{
    auto seconds = std::llround(length.count());
    std::string text;
    for (const auto& [size, letter] : {std::pair{3600, 'h'}, {60, 'm'}, {1, 's'}}) {
        if (const auto count = seconds / size; count > 0)
            text += std::to_string(count) + letter;
        seconds %= size;
    }
    return text.empty() ? "0s" : text;
}

std::expected<Seconds, std::string> length(std::string_view text, ClosedRange<Seconds> range)
{
    const auto sum = text.empty() ? std::nullopt : sumOfParts(text);
    if (sum && *sum >= range.lowest && *sum <= range.highest)
        return *sum;
    return std::unexpected{"expected a length from " + lengthText(range.lowest) + " to " + lengthText(range.highest)
        + examples(range) + ", not \"" + std::string{text} + "\""};
}

std::expected<TimeOfDay, std::string> timeOfDay(std::string_view text)
{
    auto rest = text;
    const auto hour = rest.empty() ? std::nullopt : takeNumber(rest);
    if (hour && *hour <= 23 && rest.size() == 3 && rest.front() == ':') {
        rest.remove_prefix(1);
        const auto minute = takeNumber(rest);
        if (minute && *minute <= 59 && rest.empty())
            return TimeOfDay{*hour, *minute};
    }
    return std::unexpected{
        "expected a time of day from 00:00 to 23:59, such as 18:30, not \"" + std::string{text} + "\""};
}

std::string timeOfDayText(TimeOfDay time)
{
    const auto twoDigits = [](std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return twoDigits(time.hour()) + ":" + twoDigits(time.minute());
}

std::expected<std::string, std::string> fileContents(const std::string& path)
{
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    const auto close = [](std::FILE* open) { return open == stdin ? 0 : std::fclose(open); };
    const File file{path == "-" ? stdin : std::fopen(path.c_str(), "rbe"), close};
    std::string text;
    if (file) {
        char chunk[1 << 16];
        auto read = sizeof chunk;
        while (read == sizeof chunk) {
            read = std::fread(chunk, 1, sizeof chunk, file.get());
            text.append(chunk, read);
        }
    }
    if (!file || std::ferror(file.get()))
        return std::unexpected{"cannot read " + path + ": " + std::strerror(errno)};
    return text;
}

} // namespace vespra::arguments
