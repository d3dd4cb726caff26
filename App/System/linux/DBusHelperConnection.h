#pragma once

#include "App/System/HelperConnection.h"
#include "App/System/linux/DBus.h"
#include "Core/Lifetime.h"

#include <map>

namespace vespra {

/// Uses a connection to the system bus of its own: the component ties what it does to that connection, and undoes it
/// when that ends. Starts the component if need be.
class DBusHelperConnection final : public HelperConnection {
public:
    DBusHelperConnection();
    ~DBusHelperConnection() override;

    void protocolVersion(HelperReply<std::int64_t> reply) override;
    void enableClosedLid(HelperReply<HelperRefusal> reply) override;
    void heartbeat(HelperReply<bool> reply) override;
    void restoreSleep(HelperReply<HelperRefusal> reply) override;
    void sleepNow(HelperReply<HelperRefusal> reply) override;
    void shutDown(HelperReply<HelperRefusal> reply) override;
    std::expected<HelperRefusal, HelperUnreachable> restoreSleepAndWait(Seconds timeout) override;

private:
    template <class Value, class Read> void ask(const char* method, HelperReply<Value> reply, Read read);
    void ownerChanged(const QString& before, const QString& after);
    void tellIfOver();

    QString name_;
    QDBusConnection bus_;
    QDBusServiceWatcher owner_;
    dbus::SignalWatch busEnd_;
    std::map<int, dbus::Call> calls_;
    int lastCall_ = 0;
    /// The unique bus name of the component that has gone; empty as long as none has.
    QString left_;
    bool isBusGone_ = false;
    Lifetime lifetime_;
};

} // namespace vespra
