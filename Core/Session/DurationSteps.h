#pragma once

#include "Core/Scheduling/Instant.h"

#include <optional>
#include <vector>

/// The durations that the timer picker and the safety-cap picker offer.
namespace vespra::DurationSteps {

/// Ascending, from one minute to 24 hours.
const std::vector<Seconds>& values();

/// The first one strictly longer than `after`, absent when none is.
std::optional<Seconds> next(Seconds after);
/// The last one strictly shorter than `before`, absent when none is.
std::optional<Seconds> previous(Seconds before);

} // namespace vespra::DurationSteps
