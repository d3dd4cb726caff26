#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace vespra {

template <class Enum, std::size_t count> using RawValueTable = std::array<std::pair<Enum, std::string_view>, count>;

/// The one table of an enumeration that is written as text: every case in its order, with its raw value.
/// Specialised beside each such enumeration.
template <class Enum> inline constexpr auto rawValues = nullptr;

template <class Enum> constexpr std::string_view rawValue(Enum value)
{
    for (const auto& [known, raw] : rawValues<Enum>)
        if (known == value)
            return raw;
    return {};
}

/// Absent for an unknown text; the comparison is exact.
template <class Enum> constexpr std::optional<Enum> fromRawValue(std::string_view text)
{
    for (const auto& [known, raw] : rawValues<Enum>)
        if (raw == text)
            return known;
    return {};
}

} // namespace vespra
