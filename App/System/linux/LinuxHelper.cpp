#include "App/System/linux/LinuxHelper.h"

#include "App/System/linux/DBusHelperConnection.h"
#include "App/System/linux/Logind.h"
#include "App/System/linux/PolkitHelperService.h"

#include <map>
#include <QDBusVariant>
#include <QFile>

namespace vespra {

namespace {

    /// Whether there is a lid, from UPower, or from the kernel where that has never answered.
    class LinuxMachineFacts final : public MachineFacts {
    public:
        void read(std::function<void(Reading)> answer) override
        {
            waiting_.push_back(std::move(answer));
            if (call_)
                return;
            const dbus::Target upower{QStringLiteral("org.freedesktop.UPower"),
                QStringLiteral("/org/freedesktop/UPower"),
                QStringLiteral("org.freedesktop.DBus.Properties")};
            auto message = upower.method(
                QStringLiteral("Get"), {QStringLiteral("org.freedesktop.UPower"), QStringLiteral("LidIsPresent")});
            message.setAutoStartService(true);
            call_ = dbus::call(dbus::systemBus(), message, dbus::readingTimeout, [this](const QDBusMessage& reply) {
                received(reply);
            });
        }

    private:
        void received(const QDBusMessage& reply)
        {
            call_.reset();
            const auto said = reply.arguments().value(0).value<QDBusVariant>().variant();
            if (reply.type() == QDBusMessage::ReplyMessage)
                hasLid_ = said.toBool();
            const bool hasLid = hasLid_ ? *hasLid_ : QFile::exists(QStringLiteral("/proc/acpi/button/lid"));
            for (const auto& answer : std::exchange(waiting_, {}))
                answer({.hasLid = hasLid, .isSignedByOwnTeam = true});
        }

        std::vector<std::function<void(Reading)>> waiting_;
        std::optional<bool> hasLid_;
        dbus::Call call_;
    };

    /// Suspend as the active user's right.
    class LogindSystemPower final : public SystemPower {
    public:
        void sleepNow(Done done) override
        {
            const int id = ++lastCall_;
            calls_[id] = dbus::call(dbus::systemBus(),
                logind::manager().method(QStringLiteral("Suspend"), {false}),
                dbus::untilAnswered,
                [this, id, done = std::move(done)](const QDBusMessage& reply) {
                    calls_.erase(id);
                    if (reply.type() == QDBusMessage::ReplyMessage)
                        done({});
                    else
                        done(std::unexpected{
                            reply.errorName().toStdString() + " " + reply.errorMessage().toStdString()});
                });
        }

    private:
        std::map<int, dbus::Call> calls_;
        int lastCall_ = 0;
    };

} // namespace

PlatformHelper makeLinuxHelper()
{
    return {.service = std::make_shared<PolkitHelperService>(),
        .connect = [] { return std::make_unique<DBusHelperConnection>(); },
        .facts = std::make_shared<LinuxMachineFacts>(),
        .power = std::make_shared<LogindSystemPower>()};
}

} // namespace vespra
