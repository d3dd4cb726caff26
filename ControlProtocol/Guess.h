#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vespra {

/// The entry of `known` that `word` was most likely meant to be: the first with the fewest letters added, left out,
/// changed or swapped, at most one and one more for every four letters. Absent if none is near, and if `word` is itself
/// an entry.
std::optional<std::string> guess(std::string_view word, const std::vector<std::string>& known);

} // namespace vespra
