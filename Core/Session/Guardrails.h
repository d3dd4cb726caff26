#pragma once

#include "Core/ClosedLid/ClosedLidBlocker.h"
#include "Core/Energy/SessionConditions.h"
#include "Core/Session/SessionSettings.h"

#include <optional>

namespace vespra {

/// The first guardrail that the conditions break, if any. `engaged`: closed-lid mode is, or would be, in force.
std::optional<ClosedLidBlocker> violation(
    bool engaged, const SessionConditions& conditions, const SessionSettings& settings);

/// The same without heat.
std::optional<ClosedLidBlocker> powerViolation(
    bool engaged, const PowerSnapshot& power, const SessionSettings& settings);

/// Whether a session needs the charger.
bool needsCharger(bool engaged, const SessionSettings& settings);

} // namespace vespra
