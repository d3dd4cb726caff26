#pragma once

#include "Core/Match.h"

#include <cstdint>

namespace vespra {

namespace blocker {
    struct BatteryTooLow {
        static constexpr std::string_view name = "batteryTooLow";
        std::int64_t level; // percent
        bool operator==(const BatteryTooLow&) const = default;
    };
    struct ChargerRequired : Case {
        static constexpr std::string_view name = "chargerRequired";
    };
    struct TooHot : Case {
        static constexpr std::string_view name = "tooHot";
    };
} // namespace blocker

/// Why closed-lid mode may not start now.
using ClosedLidBlocker = std::variant<blocker::BatteryTooLow, blocker::ChargerRequired, blocker::TooHot>;

} // namespace vespra
