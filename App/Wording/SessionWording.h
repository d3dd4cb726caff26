#pragma once

#include "Core/Session/ActiveGuardrail.h"
#include "Core/Session/SessionEvent.h"
#include "Core/Session/SessionPlan.h"

#include <string>

/// The session's values in the user's words.
namespace vespra {

/// Why a session ended, in a line of the panel.
std::string shortDescription(const EndReason& reason);
/// Title and body of the notification that a session has ended.
std::string notificationTitle(const EndReason& reason);
std::string notificationBody(const EndReason& reason);
/// The name of the system symbol beside the notice that a session has ended.
std::string_view symbol(const EndReason& reason);

/// Why a start, or closed-lid mode, was refused.
std::string message(const StartRefusal& refusal);

/// "Timer", as the mode's label.
std::string title(SessionMode mode);

/// "Stops at 20% battery": what watches the running session.
std::string shortDescription(const ActiveGuardrail& guardrail);

} // namespace vespra
