#pragma once

#include "App/System/linux/DBus.h"
#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <map>
#include <QProcess>
#include <vector>

namespace vespra {

/// A bus of the test's own, which is both the system's and the session's, with services that come and go on it: logind,
/// polkit, UPower and those of a desktop, which mock_services.py plays. Nothing else can be started on it.
class MockBus {
public:
    /// Starts the bus daemon and names it in the environment: once per process, before anything else uses a bus.
    MockBus();
    ~MockBus() { stop(); }
    MockBus(const MockBus&) = delete;
    MockBus& operator=(const MockBus&) = delete;

    /// The bus and all services crash, and come back without what they knew.
    void restart();
    void own(const QString& service);
    /// Whoever calls `service` while nobody owns it has the bus start `command`, a program with arguments.
    void makeActivatable(const std::string& service, const std::string& command);
    /// The process lives on, with all that it has granted, but without the name.
    void disown(const QString& service) { ask("Disown", {service}); }
    /// As if it crashed and came back at once.
    void restart(const QString& service) { ask("Restart", {service}); }
    /// Disowns all and forgets everything.
    void reset();
    /// What polkit and logind say from now on, as a JSON object; forgets what was asked of them.
    void set(const char* json) { ask("Set", {QString::fromUtf8(json)}); }

    /// From now on calls of `member` are kept unanswered, until `answer`.
    void keepBack(const QString& member) { ask("KeepBack", {member}); }
    void answer() { ask("Release", {true}); }
    /// Answers them with an error instead.
    void refuse() { ask("Release", {false}); }

    void setProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value);
    /// Sets it and emits PropertiesChanged.
    void changeProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value);
    void emitSignal(const QString& path, const QString& interface, const QString& name, const QVariantList& arguments);

    /// "idle:block" of each lock that is open, and "org.gnome.SessionManager 4" of each cookie.
    std::vector<std::string> held();
    /// The most that were held at the same time since the last reset.
    int mostHeld() { return state()["most"].toInt(); }
    /// What was asked for, as JSON.
    QByteArray deeds();
    /// What is shown, by number: the arguments of Notify, each hint as the name of its type and its value.
    std::map<unsigned, QVariantList> notifications();
    /// What the notification service says that it can do.
    void setCapabilities(const QStringList& capabilities) { ask("SetCapabilities", {capabilities}); }

private:
    void start();
    void stop();
    QByteArray ask(const QString& method, const QVariantList& arguments = {});
    QVariantMap state();

    TemporaryDirectory folder_;
    QProcess daemon_, services_;
    QStringList owned_; // since the last reset
};

/// A test with the process's one bus, which begins without services. Brings the program's `main` along.
class BusTest : public testing::Test {
protected:
    BusTest() { bus().reset(); }

    static MockBus& bus();
    /// Lets everything that is on its way arrive.
    static void settle();

    RecordedLog log;
};

} // namespace vespra
