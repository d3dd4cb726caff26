#include "App/System/linux/LogindLock.h"

#include "App/System/linux/Logind.h"
#include "Core/Scheduling/MainThread.h"

namespace vespra {

LogindLock::LogindLock(QString who, QString what, QString mode, TaskScheduling& tasks, SystemLog log)
    : who_{std::move(who)}
    , what_{std::move(what)}
    , mode_{std::move(mode)}
    , tasks_{tasks}
    , log_{std::move(log)}
    , watch_{dbus::systemBus(), logind::manager().service, [this](bool owned) { ownerChanged(owned); }}
{
}

void LogindLock::hold(const std::string& why)
{
    mainThread::check();
    why_ = QString::fromStdString(why);
    verify();
}

void LogindLock::drop()
{
    mainThread::check();
    why_.reset();
    lock_ = {};
    retry_.reset();
    hasLoggedFailure_ = false;
    // A lock that is still on its way is released when it arrives; asking again meanwhile would give two.
}

void LogindLock::verify()
{
    if (why_ && !lock_.isValid() && !pending_)
        request();
}

void LogindLock::ownerChanged(bool owned)
{
    lock_ = {};
    pending_.reset();
    if (owned)
        verify();
}

void LogindLock::request()
{
    retry_.reset();
    pending_ = dbus::call(dbus::systemBus(),
        logind::manager().method(QStringLiteral("Inhibit"), {what_, who_, *why_, mode_}),
        dbus::untilAnswered,
        [this](const QDBusMessage& reply) { received(reply); });
}

void LogindLock::received(const QDBusMessage& reply)
{
    pending_.reset();
    if (!why_)
        return;
    if (reply.type() == QDBusMessage::ReplyMessage)
        lock_ = reply.arguments().value(0).value<QDBusUnixFileDescriptor>();
    if (lock_.isValid()) {
        hasLoggedFailure_ = false;
        return;
    }
    if (!std::exchange(hasLoggedFailure_, true))
        log_.error("Verrou logind " + what_.toStdString() + " impossible : " + reply.errorName().toStdString() + " "
            + reply.errorMessage().toStdString());
    retry_ = tasks_.schedule(retryDelay, [this] { verify(); });
}

} // namespace vespra
