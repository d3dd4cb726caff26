#pragma once

// Core/Coding: JSON and the texts in it: reading with an error that names the place, UTF-8, and what may be shown on a
// terminal.

#include "Core/Scheduling/Instant.h"

#include <nlohmann/json_fwd.hpp>

namespace vespra {

/// Keys stay in the order in which they were written.
using JSON = nlohmann::ordered_json;

/// A whole number without fraction: 600, not 600.0.
JSON numberJSON(double number);
JSON numberJSON(Seconds length);

} // namespace vespra
