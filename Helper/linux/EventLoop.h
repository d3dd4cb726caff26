#pragma once

#include "Core/Scheduling/TaskScheduling.h"
#include "Helper/SleepSetting.h"

#include <systemd/sd-event.h>

namespace vespra {

/// Releases one reference of libsystemd's.
template <auto unref> struct Unref {
    template <class Object> void operator()(Object* object) const { unref(object); }
};

using Event = std::unique_ptr<sd_event, Unref<sd_event_unref>>;
using EventSource = std::unique_ptr<sd_event_source, Unref<sd_event_source_disable_unref>>;

/// Tasks on the clock that counts through sleep, in libsystemd's loop.
class EventTaskScheduler final : public TaskScheduling {
public:
    explicit EventTaskScheduler(sd_event& event)
        : event_{event}
    {
    }
    ContinuousInstant continuousNow() const override;
    std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override;

private:
    sd_event& event_;
};

/// "Connection refused" and the like, for one of libsystemd's negative results.
std::string systemError(int result);

} // namespace vespra
