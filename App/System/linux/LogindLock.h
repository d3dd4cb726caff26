#pragma once

#include "App/System/linux/DBus.h"
#include "App/System/linux/Inhibition.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Log/SystemLog.h"

#include <optional>
#include <QDBusUnixFileDescriptor>

namespace vespra {

/// A lock of logind. It is a descriptor: it goes with the process, however that ends.
class LogindLock final : public Inhibition {
public:
    /// `what` and `mode` as logind names them: "idle" and "block". `who` is the application's name.
    LogindLock(QString who, QString what, QString mode, TaskScheduling& tasks, SystemLog log);

    void hold(const std::string& why) override;
    void drop() override;
    void verify() override;

private:
    /// Waits so long after a refusal or a timeout before asking again.
    static constexpr Seconds retryDelay = 30s;

    void ownerChanged(bool owned);
    void request();
    void received(const QDBusMessage& reply);

    QString who_;
    QString what_;
    QString mode_;
    TaskScheduling& tasks_;
    SystemLog log_;
    /// Absent: not wanted.
    std::optional<QString> why_;
    QDBusUnixFileDescriptor lock_;
    bool hasLoggedFailure_ = false;
    std::unique_ptr<ScheduledTask> retry_;
    dbus::Call pending_;
    dbus::NameWatch watch_;
};

} // namespace vespra
