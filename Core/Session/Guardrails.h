#pragma once

#include "Core/ClosedLid/ClosedLidBlocker.h"
#include "Core/Energy/SessionConditions.h"
#include "Core/Session/SessionSettings.h"

#include <optional>

namespace vespra {

/// Which guardrail is broken. It refuses a start, ends a session, or blocks closed-lid mode, hence the shared type.
using Violation = ClosedLidBlocker;

/// The first guardrail that the conditions break, if any, also for a session with an open lid. `engaged`: closed-lid
/// mode is, or would be, in force.
std::optional<Violation> violation(bool engaged, const SessionConditions& conditions, const SessionSettings& settings);

/// The same for the power source alone, without heat.
std::optional<Violation> powerViolation(bool engaged, const PowerSnapshot& power, const SessionSettings& settings);

/// Whether a session must run on the charger; `engaged` as above.
bool needsCharger(bool engaged, const SessionSettings& settings);

} // namespace vespra
