#pragma once

#include <compare>
#include <string_view>

namespace vespra {

/// Orders versions as users read them: "1.9" < "1.10", "1.0" < "1.0.1", and what ends in letters comes before what it
/// leads to: "2.0b3" < "2.0rc1" < "2.0". Numbers of any length; other signs only separate. Any thread.
std::strong_ordering compareVersions(std::string_view left, std::string_view right);

} // namespace vespra
