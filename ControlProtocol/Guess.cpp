#include "ControlProtocol/Guess.h"

#include <algorithm>

namespace vespra {

namespace {

    /// Letters that are added, left out or changed, or swapped with their neighbour, to make `to` of `from`.
    std::size_t distance(std::string_view from, std::string_view to)
    {
        // steps[i][j]: of the first i letters of `from` and the first j of `to`.
        std::vector steps(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
        for (std::size_t i = 0; i <= from.size(); ++i)
            for (std::size_t j = 0; j <= to.size(); ++j) {
                if (i == 0 || j == 0) {
                    steps[i][j] = i + j;
                    continue;
                }
                const std::size_t changed = from[i - 1] == to[j - 1] ? 0 : 1;
                steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + changed});
                if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                    steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        return steps[from.size()][to.size()];
    }

} // namespace

std::optional<std::string> guess(std::string_view word, const std::vector<std::string>& known)
{
    constexpr std::size_t lettersPerFault = 4, longest = 64; // nobody mistypes more
    if (word.size() > longest)
        return {};
    auto fewest = 2 + word.size() / lettersPerFault;
    std::optional<std::string> nearest;
    for (const auto& each : known)
        if (const auto faults = distance(word, each); faults > 0 && faults < fewest && faults < word.size()) {
            fewest = faults;
            nearest = each;
        }
    return nearest;
}

} // namespace vespra
