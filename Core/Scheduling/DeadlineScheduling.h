#pragma once

#include "Core/Scheduling/Instant.h"

#include <functional>
#include <memory>

namespace vespra {

/// A pending deadline. Destroying the handle cancels it: a deadline lives only while its handle is kept.
class ScheduledDeadline {
public:
    virtual ~ScheduledDeadline() = default;
    /// A cancelled deadline never fires. Cancelling twice, or after it has fired, does nothing.
    virtual void cancel() = 0;
};

/// Calls back at a wall-clock date, also when the computer slept over it: then at the wake-up. Main thread only.
class DeadlineScheduling {
public:
    virtual ~DeadlineScheduling() = default;
    /// Runs `action` once, on the main thread, at `date` or up to 100 ms later; a past date fires at once, in a later
    /// turn of the main loop. Earlier deadlines stay pending. The handle may be destroyed inside `action`.
    virtual std::unique_ptr<ScheduledDeadline> schedule(Instant date, std::function<void()> action) = 0;
};

} // namespace vespra
