#include "Tests/Support/MockBus.h"

#include "App/System/linux/DBus.h"
#include "HelperProtocol/FileDescriptor.h"
#include "Tests/Support/QtApplication.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <poll.h>
#include <QDBusError>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <unistd.h>

namespace vespra {

namespace {

    constexpr auto daemonConfiguration
        = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <servicedir>services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

    const QString propertiesInterface = "org.freedesktop.DBus.Properties";

} // namespace

class MockBus::Services final : public QDBusVirtualObject {
public:
    explicit Services(const QString& address)
        : bus{QDBusConnection::connectToBus(address, QStringLiteral("mock"))}
    {
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override
    {
        if (state.keptMembers.contains(message.member()))
            state.kept.push_back(message);
        else
            answer(message);
        return true;
    }

    void answer(const QDBusMessage& message)
    {
        const auto arguments = message.arguments();
        if (message.interface() == propertiesInterface)
            bus.send(message.createReply(state.properties[{message.path(), arguments.value(0).toString()}]));
        else if (message.member() == "Inhibit")
            bus.send(message.createReply(inhibit(message)));
        else if (message.member().compare("UnInhibit", Qt::CaseInsensitive) == 0)
            state.cookies.erase(arguments.value(0).toUInt());
        else if (message.member() == "GetCapabilities")
            bus.send(message.createReply(state.capabilities));
        else if (message.member() == "Notify")
            bus.send(message.createReply(show(arguments)));
        else if (message.member() == "CloseNotification")
            state.notifications.erase(arguments.value(0).toUInt());
    }

    /// Deals with what has been kept back.
    void release(auto reply)
    {
        state.keptMembers.clear();
        for (const auto& message : std::exchange(state.kept, {}))
            reply(message);
    }

    unsigned show(const QVariantList& notification)
    {
        const auto replaced = notification.value(1).toUInt();
        const auto id = replaced != 0 ? replaced : ++state.lastNotification;
        state.notifications[id] = notification;
        return id;
    }

    QVariant inhibit(const QDBusMessage& message)
    {
        const auto arguments = message.arguments();
        if (message.interface() == "org.freedesktop.login1.Manager") {
            int ends[2];
            if (pipe(ends) != 0)
                std::abort();
            const FileDescriptor lock{ends[1]};
            held(); // forgets those that have been closed
            state.locks.push_back({arguments[0].toString() + u':' + arguments[3].toString(), FileDescriptor{ends[0]}});
            state.most = std::max(state.most, state.locks.size());
            // The descriptor travels in a copy.
            QDBusUnixFileDescriptor copy{lock.get()};
            return QVariant::fromValue(copy);
        }
        state.cookies[++lastCookie]
            = message.interface() + (arguments.size() > 3 ? u' ' + arguments[3].toString() : QString{});
        state.most = std::max(state.most, state.cookies.size());
        return lastCookie;
    }

    std::vector<std::string> held()
    {
        std::erase_if(state.locks, [](const Lock& lock) {
            pollfd end{lock.reader.get(), POLLIN, 0};
            return poll(&end, 1, 0) > 0; // the other end has been closed
        });
        std::vector<std::string> all;
        all.reserve(state.locks.size() + state.cookies.size());
        for (const auto& lock : state.locks)
            all.push_back(lock.name.toStdString());
        for (const auto& [cookie, name] : state.cookies)
            all.push_back(name.toStdString());
        return all;
    }

    struct Lock {
        QString name;
        FileDescriptor reader;
    };

    /// What a test leaves behind.
    struct State {
        QStringList keptMembers;
        std::vector<QDBusMessage> kept;
        std::map<std::pair<QString, QString>, QVariantMap> properties;
        std::vector<Lock> locks;
        std::map<unsigned, QString> cookies;
        QStringList capabilities;
        std::map<unsigned, QVariantList> notifications;
        unsigned lastNotification = 0;
        std::size_t most = 0;
    };

    QDBusConnection bus;
    QStringList owned;
    State state;
    /// Never given twice: a late release must not hit another test.
    unsigned lastCookie = 0;
};

MockBus::MockBus()
{
    std::filesystem::create_directory(folder_ / "services");
    std::ofstream{folder_ / "bus.conf"} << daemonConfiguration;
    const auto configuration = "--config-file=" + (folder_ / "bus.conf").string();
    daemon_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    daemon_.start("dbus-daemon", {configuration.c_str(), "--nofork", "--nopidfile", "--print-address"});
    if (!daemon_.waitForReadyRead()) {
        std::fputs("dbus-daemon does not start\n", stderr);
        std::abort();
    }
    const auto address = daemon_.readAllStandardOutput().trimmed();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    services_ = std::make_unique<Services>(address);
    services_->moveToThread(&thread_);
    thread_.start();
    run([this] { services_->bus.registerVirtualObject("/", services_.get(), QDBusConnection::SubPath); });
}

MockBus::~MockBus()
{
    thread_.quit();
    thread_.wait();
    services_.reset();
    daemon_.kill();
    daemon_.waitForFinished();
}

void MockBus::run(const std::function<void()>& task)
{
    QMetaObject::invokeMethod(services_.get(), task, Qt::BlockingQueuedConnection);
}

void MockBus::own(const QString& service)
{
    run([&] {
        services_->owned << service;
        services_->bus.registerService(service);
    });
}

void MockBus::makeActivatable(const std::string& service, const std::string& command)
{
    std::ofstream{folder_ / ("services/" + service + ".service")} << "[D-BUS Service]\nName=" << service
                                                                  << "\nExec=" << command << "\n";
    run([&] { services_->bus.call(dbus::bus().method("ReloadConfig")); });
}

void MockBus::disown(const QString& service)
{
    run([&] { services_->bus.unregisterService(service); });
}

void MockBus::restart(const QString& service)
{
    disown(service);
    run([&] {
        if (service == "org.freedesktop.login1")
            services_->state.locks.clear();
        std::erase_if(services_->state.cookies, [&](const auto& each) { return each.second.startsWith(service); });
        services_->state.notifications.clear();
        services_->state.lastNotification = 0;
    });
    own(service);
}

void MockBus::reset()
{
    run([&] {
        for (const auto& service : std::exchange(services_->owned, {}))
            services_->bus.unregisterService(service);
        services_->state = {};
    });
}

void MockBus::keepBack(const QString& member)
{
    run([&] { services_->state.keptMembers << member; });
}

void MockBus::answer()
{
    run([&] { services_->release([&](const QDBusMessage& message) { services_->answer(message); }); });
}

void MockBus::refuse()
{
    run([&] {
        services_->release([&](const QDBusMessage& message) {
            services_->bus.send(message.createErrorReply(QDBusError::AccessDenied, "Permission denied"));
        });
    });
}

void MockBus::setProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value)
{
    run([&] { services_->state.properties[{path, interface}][name] = value; });
}

void MockBus::changeProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value)
{
    setProperty(path, interface, name, value);
    emitSignal(path, propertiesInterface, "PropertiesChanged", {interface, QVariantMap{{name, value}}, QStringList{}});
}

void MockBus::emitSignal(
    const QString& path, const QString& interface, const QString& name, const QVariantList& arguments)
{
    run([&] {
        auto signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        services_->bus.send(signal);
    });
}

std::vector<std::string> MockBus::held()
{
    std::vector<std::string> all;
    run([&] { all = services_->held(); });
    return all;
}

std::map<unsigned, QVariantList> MockBus::notifications()
{
    std::map<unsigned, QVariantList> all;
    run([&] { all = services_->state.notifications; });
    return all;
}

void MockBus::setCapabilities(const QStringList& capabilities)
{
    run([&] { services_->state.capabilities = capabilities; });
}

std::size_t MockBus::mostHeld()
{
    std::size_t most = 0;
    run([&] { most = services_->state.most; });
    return most;
}

MockBus& BusTest::bus()
{
    static MockBus mock;
    return mock;
}

void BusTest::settle()
{
    for (int round = 0; round < 5; ++round)
        for (const auto& connection : {dbus::systemBus(), dbus::sessionBus()}) {
            bool isAnswered = false;
            const auto question
                = dbus::call(connection, dbus::bus().method("GetId"), dbus::untilAnswered, [&](const QDBusMessage&) {
                      isAnswered = true;
                  });
            QtApplication::runUntil([&] { return isAnswered; });
            bus().held(); // the services have had a turn too
            QCoreApplication::processEvents();
        }
}

} // namespace vespra

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    // Connections to the bus last as long as the process, and need the event loop all the time.
    const vespra::QtApplication application;
    return RUN_ALL_TESTS();
}
