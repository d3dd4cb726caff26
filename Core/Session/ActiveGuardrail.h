#pragma once

#include "Core/Match.h"
#include "Core/Scheduling/Instant.h"

namespace vespra {

namespace guardrail {
    struct LowBattery {
        static constexpr std::string_view name = "lowBattery";
        std::int64_t threshold; // percent
        bool operator==(const LowBattery&) const = default;
    };
    struct BatteryTimeLimit {
        static constexpr std::string_view name = "batteryTimeLimit";
        Seconds limit;
        bool operator==(const BatteryTimeLimit&) const = default;
    };
    struct ClosedLidLimit {
        static constexpr std::string_view name = "closedLidLimit";
        Seconds limit;
        bool operator==(const ClosedLidLimit&) const = default;
    };
    struct ChargerRequired : Case {
        static constexpr std::string_view name = "chargerRequired";
    };
} // namespace guardrail

/// A rule that may end the running session.
using ActiveGuardrail = std::variant<guardrail::LowBattery, guardrail::BatteryTimeLimit, guardrail::ClosedLidLimit,
    guardrail::ChargerRequired>;

} // namespace vespra
