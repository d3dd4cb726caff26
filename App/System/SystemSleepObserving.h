#pragma once

#include <functional>

namespace vespra {

/// Tells when the machine is about to sleep and when it has woken up. It cannot veto a sleep. Main thread only.
class SystemSleepObserving {
public:
    virtual ~SystemSleepObserving() = default;

    /// Called right before the machine sleeps. What it does, and what it posts to the main loop, is done before the
    /// machine goes, as far as the system grants a delay.
    std::function<void()> onWillSleep;
    /// Called after the machine has woken up, once the other monitors have read again.
    std::function<void()> onDidWake;
};

} // namespace vespra
