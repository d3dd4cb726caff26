#pragma once

#include "Core/Match.h"

#include <array>
#include <cstdint>
#include <optional>

namespace vespra {

namespace end {
    struct LowBattery {
        static constexpr std::string_view name = "lowBattery";
        std::int64_t level; // percent
        bool operator==(const LowBattery&) const = default;
    };
    struct StoppedByUser : Case {
        static constexpr std::string_view name = "stoppedByUser";
    };
    struct TimeElapsed : Case {
        static constexpr std::string_view name = "timeElapsed";
    };
    struct SystemSleep : Case {
        static constexpr std::string_view name = "systemSleep";
    };
    struct AppTerminated : Case {
        static constexpr std::string_view name = "appTerminated";
    };
    struct ChargerDisconnected : Case {
        static constexpr std::string_view name = "chargerDisconnected";
    };
    struct BatteryTimeLimit : Case {
        static constexpr std::string_view name = "batteryTimeLimit";
    };
    struct ClosedLidTimeLimit : Case {
        static constexpr std::string_view name = "closedLidTimeLimit";
    };
    struct Overheating : Case {
        static constexpr std::string_view name = "overheating";
    };
    struct AgentsFinished : Case {
        static constexpr std::string_view name = "agentsFinished";
    };
    struct SafetyCapReached : Case {
        static constexpr std::string_view name = "safetyCapReached";
    };
} // namespace end

/// Why a session ended.
using EndReason = std::variant<end::LowBattery, end::StoppedByUser, end::TimeElapsed, end::SystemSleep,
    end::AppTerminated, end::ChargerDisconnected, end::BatteryTimeLimit, end::ClosedLidTimeLimit, end::Overheating,
    end::AgentsFinished, end::SafetyCapReached>;

/// Whether the user is told of an end, and whether a guardrail brought it about.
struct EndTraits {
    bool notifies;
    bool isGuardrail;
};

constexpr EndTraits traits(const EndReason& reason)
{
    struct Kind {
        static constexpr EndTraits silent() { return {.notifies = false, .isGuardrail = false}; }
        static constexpr EndTraits asPlanned() { return {.notifies = true, .isGuardrail = false}; }
        static constexpr EndTraits guardrail() { return {.notifies = true, .isGuardrail = true}; }
    };
    return match(
        reason,
        [](const end::LowBattery&) { return Kind::guardrail(); },
        [](const end::StoppedByUser&) { return Kind::silent(); },
        [](const end::TimeElapsed&) { return Kind::asPlanned(); },
        [](const end::SystemSleep&) { return Kind::silent(); },
        [](const end::AppTerminated&) { return Kind::silent(); },
        [](const end::ChargerDisconnected&) { return Kind::guardrail(); },
        [](const end::BatteryTimeLimit&) { return Kind::guardrail(); },
        [](const end::ClosedLidTimeLimit&) { return Kind::guardrail(); },
        [](const end::Overheating&) { return Kind::guardrail(); },
        [](const end::AgentsFinished&) { return Kind::asPlanned(); },
        [](const end::SafetyCapReached&) { return Kind::guardrail(); });
}

/// The reasons that carry nothing, in the order of `EndReason`.
inline constexpr std::array<EndReason, std::variant_size_v<EndReason> - 1> payloadFreeEndReasons{
    end::StoppedByUser{},
    end::TimeElapsed{},
    end::SystemSleep{},
    end::AppTerminated{},
    end::ChargerDisconnected{},
    end::BatteryTimeLimit{},
    end::ClosedLidTimeLimit{},
    end::Overheating{},
    end::AgentsFinished{},
    end::SafetyCapReached{},
};

} // namespace vespra
