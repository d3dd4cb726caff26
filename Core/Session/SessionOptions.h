#pragma once

#include "Core/Coding/JSONSource.h"

namespace vespra {

/// Chosen at the start of a session, changeable while it runs.
struct SessionOptions {
    /// Keep the display on as well as the system.
    bool keepsDisplayAwake = false;
    /// The session asks for closed-lid mode.
    bool closedLid = false;

    bool operator==(const SessionOptions&) const = default;
};

JSON toJSON(const SessionOptions& options);
/// Reads within `decoded`; both keys are required.
SessionOptions readSessionOptions(const JSONSource& source);

} // namespace vespra
