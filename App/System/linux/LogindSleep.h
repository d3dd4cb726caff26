#pragma once

#include "App/System/linux/LogindLock.h"
#include "App/System/SystemSleepObserving.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"

namespace vespra {

/// Listens to logind's PrepareForSleep. While a session runs it holds a delay lock, so that the machine waits, up to 5
/// s, until the session's end has been dealt with.
class LogindSleep final : public SystemSleepObserving {
public:
    /// `onResume` runs before `onDidWake`: everything is read again.
    LogindSleep(MainLoop& loop, std::unique_ptr<LogindLock> delay, std::string reason, std::function<void()> onResume);

    void sessionRuns(bool runs);

private:
    void prepareForSleep(const QDBusMessage& signal);
    void willSleep();
    void didWake();
    void reconcile();

    MainLoop& loop_;
    std::unique_ptr<LogindLock> delay_;
    std::string reason_;
    std::function<void()> onResume_;
    bool sessionRuns_ = false;
    bool isGoingToSleep_ = false;
    dbus::SignalWatch signal_;
    dbus::NameWatch owner_;
    Lifetime lifetime_;
};

} // namespace vespra
