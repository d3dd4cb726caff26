#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vespra {

/// The one of `known` that `word` most likely was to be: the first with the fewest letters added, left out, changed or
/// swapped, at most one and one more for every four letters. Absent if none is near; what is the same is no guess.
std::optional<std::string> guess(std::string_view word, const std::vector<std::string>& known);

} // namespace vespra
