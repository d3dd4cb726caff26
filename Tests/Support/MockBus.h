#pragma once

#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <QProcess>
#include <QThread>
#include <QVariantMap>
#include <vector>

namespace vespra {

/// A bus of the test's own, which is both the system's and the session's, with services that come and go on it: logind,
/// UPower and those of a desktop. Nothing else can be started on it. They live on a thread of their own, as if in
/// another process.
class MockBus {
public:
    /// Starts the bus daemon and names it in the environment: once per process, before anything else uses a bus.
    MockBus();
    ~MockBus();
    MockBus(const MockBus&) = delete;
    MockBus& operator=(const MockBus&) = delete;

    void own(const QString& service);
    /// Whoever calls `service` while nobody owns it has the bus start `command`, a program with arguments.
    void makeActivatable(const std::string& service, const std::string& command);
    /// The process lives on, with all that it has granted, but without the name.
    void disown(const QString& service);
    /// As if it crashed and came back at once.
    void restart(const QString& service);
    /// Disowns all and forgets everything.
    void reset();

    /// From now on calls of `member` are kept unanswered, until `answer`.
    void keepBack(const QString& member);
    void answer();
    /// Answers them with an error instead.
    void refuse();

    void setProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value);
    /// Sets it and emits PropertiesChanged.
    void changeProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value);
    void emitSignal(const QString& path, const QString& interface, const QString& name, const QVariantList& arguments);

    /// "idle:block" of each lock that is open, and "org.gnome.SessionManager 4" of each cookie.
    std::vector<std::string> held();
    /// What is shown, by number: the arguments of Notify.
    std::map<unsigned, QVariantList> notifications();
    /// What the notification service says that it can do.
    void setCapabilities(const QStringList& capabilities);

    /// The most that were held at the same time since the last reset.
    std::size_t mostHeld();

private:
    class Services;

    void run(const std::function<void()>& task);

    TemporaryDirectory folder_;
    QProcess daemon_;
    std::unique_ptr<Services> services_;
    QThread thread_;
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
