#pragma once

#include "Core/Scheduling/Instant.h"

#include <optional>

/// When the application looks for new versions without being asked.
namespace vespra::updateSchedule {

/// From one answer to the next question.
inline constexpr Seconds interval = 24h;
/// Up to so much later, so that not everybody asks at the same moment.
inline constexpr Seconds jitter = 2h;
/// The start of the computer is busy enough.
inline constexpr Seconds startDelay = 2min;
/// After a check that failed, doubled by each further one, at most `interval`.
inline constexpr Seconds firstRetry = 1h;

/// How long to wait at `now`, after the last answer (absent: never any) and so many `failures` since. `chance` is from
/// 0 to below 1. A last answer in the future, by a clock that was set back, counts as one just now.
Seconds untilNextCheck(Instant now, std::optional<Instant> lastAnswer, int failures, double chance);

} // namespace vespra::updateSchedule
