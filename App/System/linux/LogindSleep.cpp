#include "App/System/linux/LogindSleep.h"

#include "App/System/linux/Logind.h"

namespace vespra {

LogindSleep::LogindSleep(
    MainLoop& loop, std::unique_ptr<LogindLock> delay, std::string reason, std::function<void()> onResume)
    : loop_{loop}
    , delay_{std::move(delay)}
    , reason_{std::move(reason)}
    , onResume_{std::move(onResume)}
    , signal_{dbus::systemBus(),
          logind::manager(),
          QStringLiteral("PrepareForSleep"),
          [this](const QDBusMessage& signal) { prepareForSleep(signal); }}
    , owner_{dbus::systemBus(), logind::manager().service, [this](bool) {
                 // A new logind does not know that it has promised a wake-up.
                 if (isGoingToSleep_)
                     didWake();
             }}
{
}

void LogindSleep::sessionRuns(bool runs)
{
    sessionRuns_ = runs;
    reconcile();
}

void LogindSleep::prepareForSleep(const QDBusMessage& signal)
{
    const auto starts = signal.arguments().value(0);
    if (starts.metaType() != QMetaType::fromType<bool>())
        return;
    if (starts.toBool())
        willSleep();
    else
        didWake();
}

void LogindSleep::willSleep()
{
    isGoingToSleep_ = true;
    notify(onWillSleep);
    // Two turns later: the session's end posts tasks, which post further tasks, and both must run before the lock is
    // released.
    loop_.post(lifetime_.guard([this] { loop_.post(lifetime_.guard([this] { reconcile(); })); }));
}

void LogindSleep::didWake()
{
    isGoingToSleep_ = false;
    reconcile();
    onResume_();
    notify(onDidWake);
}

void LogindSleep::reconcile()
{
    if (sessionRuns_ && !isGoingToSleep_)
        delay_->hold(reason_);
    else
        delay_->drop();
}

} // namespace vespra
