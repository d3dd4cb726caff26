#pragma once

#include "Core/Session/SessionEvent.h"

#include <string>

/// The engine's values in the user's words.
namespace vespra {

/// The title of the notification that a session has ended.
std::string notificationTitle(const EndReason& reason);

/// Why a start, or closed-lid mode, was refused.
std::string message(const StartRefusal& refusal);

/// A clock time in the user's locale, short: "18:30".
std::string timeText(Instant instant);

} // namespace vespra
