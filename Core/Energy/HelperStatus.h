#pragma once

#include "Core/Match.h"
#include "Core/RawValue.h"

namespace vespra {

/// Why this machine or build can never keep awake with its lid closed.
enum class ClosedLidUnsupportedReason { noBuiltInDisplay, unsignedBuild };

template <>
inline constexpr auto rawValues<ClosedLidUnsupportedReason> = RawValueTable<ClosedLidUnsupportedReason, 2>{{
    {ClosedLidUnsupportedReason::noBuiltInDisplay, "noBuiltInDisplay"},
    {ClosedLidUnsupportedReason::unsignedBuild, "unsignedBuild"},
}};

namespace helper {
    struct Unsupported {
        static constexpr std::string_view name = "unsupported";
        ClosedLidUnsupportedReason reason;
        bool operator==(const Unsupported&) const = default;
    };
    struct NotInstalled : Case {
        static constexpr std::string_view name = "notInstalled";
    };
    struct AwaitingApproval : Case {
        static constexpr std::string_view name = "awaitingApproval";
    };
    /// Registering or reaching it failed; tried again after a while.
    struct Failed : Case {
        static constexpr std::string_view name = "failed";
    };
    /// It answers, in the version that the application speaks.
    struct Ready : Case {
        static constexpr std::string_view name = "ready";
    };
} // namespace helper

/// The state of the privileged closed-lid component.
using HelperStatus
    = std::variant<helper::Unsupported, helper::NotInstalled, helper::AwaitingApproval, helper::Failed, helper::Ready>;

constexpr bool isReady(const HelperStatus& status) { return std::holds_alternative<helper::Ready>(status); }

} // namespace vespra
