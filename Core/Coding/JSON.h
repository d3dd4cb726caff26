#pragma once

#include <nlohmann/json_fwd.hpp>

namespace vespra {

/// Keys stay in the order in which they were written.
using JSON = nlohmann::ordered_json;

} // namespace vespra
