#pragma once

#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Helper/PowerControl.h"
#include "HelperProtocol/HelperXPC.h"
#include "Log/SystemLog.h"

namespace vespra {

/// A task that runs this much later than it was due was slept over.
inline bool wasSleptOver(ContinuousInstant due, ContinuousInstant now) { return now - due > 3s; }

/// After the override has gone, the system does not react to a lid that was shut before. This asks it to sleep, a few
/// times, until it has slept or the lid is open.
class ShutLidSleep {
public:
    /// By then a system that does react has gone to sleep.
    static constexpr Seconds firstLook = 2s;
    /// After a component that had died: by then an application that still wants the override has noticed and come back.
    static constexpr Seconds firstLookAfterRecovery = HelperXPC::heartbeatInterval + 5s;
    static constexpr Seconds interval = 5s;
    static constexpr int mostLooks = 12;

    ShutLidSleep(PowerControl& power, TaskScheduling& tasks, SystemLog log);

    void begin(Seconds wait = firstLook);
    /// To be called when the system is about to sleep, too.
    void cancel();
    bool isUnderWay() const { return next_ != nullptr; }

    /// Called when `isUnderWay` may have changed.
    std::function<void()> onChange;

private:
    void scheduleLook(Seconds after);
    void look();

    PowerControl& power_;
    TaskScheduling& tasks_;
    SystemLog log_;
    int looksLeft_ = 0;
    ContinuousInstant due_;
    std::unique_ptr<ScheduledTask> next_;
    Lifetime lifetime_;
};

} // namespace vespra
