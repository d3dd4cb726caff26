#include "Core/Session/DurationSteps.h"

#include <algorithm>

namespace vespra::DurationSteps {

namespace {

    std::vector<Seconds> makeValues()
    {
        std::vector<Seconds> values{1min, 2min, 5min, 10min, 15min, 20min, 30min, 45min};
        const auto add = [&](std::chrono::minutes from, std::chrono::minutes to, std::chrono::minutes step) {
            for (auto length = from; length <= to; length += step)
                values.emplace_back(length);
        };
        add(1h, 4h, 15min);
        add(4h + 30min, 8h, 30min);
        add(9h, 24h, 1h);
        return values;
    }

} // namespace

const std::vector<Seconds>& values()
{
    static const auto values = makeValues();
    return values;
}

std::optional<Seconds> next(Seconds after)
{
    const auto found = std::ranges::upper_bound(values(), after);
    return found == values().end() ? std::nullopt : std::optional{*found};
}

std::optional<Seconds> previous(Seconds before)
{
    const auto found = std::ranges::lower_bound(values(), before);
    return found == values().begin() ? std::nullopt : std::optional{*std::prev(found)};
}

} // namespace vespra::DurationSteps
