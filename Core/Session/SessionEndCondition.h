#pragma once

#include "Core/Scheduling/Instant.h"
#include "Core/Session/EndReason.h"

#include <functional>
#include <optional>

namespace vespra {

/// Something outside the session's own rules that can end it. Main thread only.
class SessionEndCondition {
public:
    virtual ~SessionEndCondition() = default;

    /// To be called whenever the verdict or the deadline may have changed. Set while a session runs. The call may end
    /// the session, and with it this object unless somebody else holds it: make it the last thing that a function does.
    std::function<void()> onChange;

    virtual void sessionDidBegin(Instant /*now*/) { }
    /// A reason ends the session.
    virtual std::optional<EndReason> evaluate(Instant now) = 0;
    /// The next date at which `evaluate` could change its answer by time alone; absent when none can.
    virtual std::optional<Instant> nextDeadline(Instant /*now*/) { return {}; }
    /// Comes exactly once for each `sessionDidBegin`.
    virtual void sessionDidEnd() { }
};

} // namespace vespra
