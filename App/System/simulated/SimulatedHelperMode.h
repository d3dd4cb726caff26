#pragma once

#include "Core/RawValue.h"

namespace vespra {

/// How the privileged component of a simulated laptop behaves.
enum class SimulatedHelperMode {
    ready,
    notInstalled,
    awaitingApproval,
    /// Registered, but cannot be reached.
    failed,
    noBuiltInDisplay,
    unsignedBuild,
    /// Answers, and refuses whatever would change anything.
    refusing,
    /// Speaks version 1.
    outdated,
    /// Takes requests and never answers.
    stuck,
};

template <>
inline constexpr auto rawValues<SimulatedHelperMode> = RawValueTable<SimulatedHelperMode, 9>{{
    {SimulatedHelperMode::ready, "ready"},
    {SimulatedHelperMode::notInstalled, "notInstalled"},
    {SimulatedHelperMode::awaitingApproval, "awaitingApproval"},
    {SimulatedHelperMode::failed, "failed"},
    {SimulatedHelperMode::noBuiltInDisplay, "noBuiltInDisplay"},
    {SimulatedHelperMode::unsignedBuild, "unsignedBuild"},
    {SimulatedHelperMode::refusing, "refusing"},
    {SimulatedHelperMode::outdated, "outdated"},
    {SimulatedHelperMode::stuck, "stuck"},
}};

} // namespace vespra
