#include "Core/Updates/UpdateSchedule.h"

#include <algorithm>
#include <cmath>

namespace vespra::updateSchedule {

Seconds untilNextCheck(Instant now, std::optional<Instant> lastAnswer, int failures, double chance)
{
    if (failures > 0) {
        const auto retry = std::min(interval, firstRetry * std::exp2(std::min(failures - 1, 10)));
        return retry + retry * (chance * (jitter / interval));
    }
    if (!lastAnswer)
        return startDelay;
    const auto due = std::min(*lastAnswer, now) + interval + jitter * chance;
    return std::max(startDelay, due - now);
}

} // namespace vespra::updateSchedule
