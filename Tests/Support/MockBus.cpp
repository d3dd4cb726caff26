#include "Tests/Support/MockBus.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <poll.h>
#include <QDBusError>
#include <QDBusUnixFileDescriptor>
#include <sys/wait.h>

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

    const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

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
        if (keptMembers.contains(message.member()))
            kept.push_back(message);
        else
            answer(message);
        return true;
    }

    void answer(const QDBusMessage& message)
    {
        const auto arguments = message.arguments();
        if (message.interface() == propertiesInterface)
            bus.send(message.createReply(properties[{message.path(), arguments.value(0).toString()}]));
        else if (message.member() == QStringLiteral("Inhibit"))
            bus.send(message.createReply(inhibit(message)));
        else if (message.member().compare(QStringLiteral("UnInhibit"), Qt::CaseInsensitive) == 0)
            cookies.erase(arguments.value(0).toUInt());
        else if (message.member() == QStringLiteral("GetCapabilities"))
            bus.send(message.createReply(capabilities));
        else if (message.member() == QStringLiteral("Notify"))
            bus.send(message.createReply(show(arguments)));
        else if (message.member() == QStringLiteral("CloseNotification"))
            notifications.erase(arguments.value(0).toUInt());
    }

    unsigned show(const QVariantList& notification)
    {
        const auto replaced = notification.value(1).toUInt();
        const auto id = replaced != 0 ? replaced : ++lastNotification;
        notifications[id] = notification;
        return id;
    }

    QVariant inhibit(const QDBusMessage& message)
    {
        const auto arguments = message.arguments();
        const bool isLogind = message.interface() == QStringLiteral("org.freedesktop.login1.Manager");
        if (isLogind) {
            int ends[2];
            if (pipe(ends) != 0)
                std::abort();
            const FileDescriptor lock{ends[1]};
            held(); // forgets those that have been closed
            locks.push_back({arguments[0].toString() + u':' + arguments[3].toString(), FileDescriptor{ends[0]}});
            most = std::max(most, locks.size());
            // The descriptor travels in a copy.
            QDBusUnixFileDescriptor copy{lock.get()};
            return QVariant::fromValue(copy);
        }
        cookies[++lastCookie]
            = message.interface() + (arguments.size() > 3 ? u' ' + arguments[3].toString() : QString{});
        most = std::max(most, cookies.size());
        return lastCookie;
    }

    std::vector<std::string> held()
    {
        std::erase_if(locks, [](const Lock& lock) {
            pollfd end{lock.reader.get(), POLLIN, 0};
            return poll(&end, 1, 0) > 0; // the other end has been closed
        });
        std::vector<std::string> all;
        for (const auto& lock : locks)
            all.push_back(lock.name.toStdString());
        for (const auto& [cookie, name] : cookies)
            all.push_back(name.toStdString());
        return all;
    }

    struct Lock {
        QString name;
        FileDescriptor reader;
    };

    QDBusConnection bus;
    QStringList keptMembers;
    std::vector<QDBusMessage> kept;
    std::map<std::pair<QString, QString>, QVariantMap> properties;
    std::vector<Lock> locks;
    std::map<unsigned, QString> cookies;
    unsigned lastCookie = 0;
    QStringList capabilities;
    std::map<unsigned, QVariantList> notifications;
    unsigned lastNotification = 0;
    std::size_t most = 0;
};

MockBus::MockBus()
{
    std::filesystem::create_directory(folder_ / "services");
    std::ofstream{folder_ / "bus.conf"} << daemonConfiguration;
    int ends[2];
    if (pipe(ends) != 0)
        std::abort();
    daemon_ = fork();
    if (daemon_ == 0) {
        const auto address = "--print-address=" + std::to_string(ends[1]);
        const auto configuration = "--config-file=" + (folder_ / "bus.conf").string();
        execlp(
            "dbus-daemon", "dbus-daemon", configuration.c_str(), "--nofork", "--nopidfile", address.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    char address[256] = {};
    auto* output = fdopen(ends[0], "r");
    if (!std::fgets(address, sizeof address, output)) {
        std::fputs("dbus-daemon does not start\n", stderr);
        std::abort();
    }
    std::fclose(output);
    const auto trimmed = QString::fromLatin1(address).trimmed();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", trimmed.toLatin1().constData(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", trimmed.toLatin1().constData(), 1);
    services_ = std::make_unique<Services>(trimmed);
    services_->moveToThread(&thread_);
    thread_.start();
    run([this] {
        services_->bus.registerVirtualObject(QStringLiteral("/"), services_.get(), QDBusConnection::SubPath);
    });
}

MockBus::~MockBus()
{
    thread_.quit();
    thread_.wait();
    services_.reset();
    kill(static_cast<pid_t>(daemon_), SIGTERM);
    waitpid(static_cast<pid_t>(daemon_), nullptr, 0);
}

void MockBus::run(const std::function<void()>& task)
{
    QMetaObject::invokeMethod(services_.get(), task, Qt::BlockingQueuedConnection);
}

void MockBus::own(const char* service)
{
    run([&] { services_->bus.registerService(QLatin1String{service}); });
}

void MockBus::makeActivatable(const char* service, const std::string& command)
{
    const auto name = std::string{service};
    std::ofstream{folder_ / ("services/" + name + ".service")} << "[D-BUS Service]\nName=" << name
                                                               << "\nExec=" << command << "\n";
    run([&] {
        services_->bus.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("ReloadConfig")));
    });
}

void MockBus::disown(const char* service)
{
    run([&] { services_->bus.unregisterService(QLatin1String{service}); });
}

void MockBus::restart(const char* service)
{
    disown(service);
    run([&] {
        std::erase_if(
            services_->cookies, [&](const auto& each) { return each.second.startsWith(QLatin1String{service}); });
        services_->notifications.clear();
        services_->lastNotification = 0;
    });
    own(service);
}

void MockBus::reset()
{
    for (const auto* service : {"org.freedesktop.login1",
             "org.freedesktop.UPower",
             "org.gnome.SessionManager",
             "org.freedesktop.PowerManagement",
             "org.freedesktop.ScreenSaver",
             "org.freedesktop.Notifications"})
        disown(service);
    run([&] {
        services_->keptMembers.clear();
        services_->kept.clear();
        services_->properties.clear();
        services_->locks.clear();
        services_->cookies.clear();
        services_->most = 0;
        services_->capabilities.clear();
        services_->notifications.clear();
        services_->lastNotification = 0;
    });
}

void MockBus::keepBack(const char* member)
{
    run([&] { services_->keptMembers << QLatin1String{member}; });
}

void MockBus::answer()
{
    run([&] {
        services_->keptMembers.clear();
        for (const auto& message : std::exchange(services_->kept, {}))
            services_->answer(message);
    });
}

void MockBus::refuse()
{
    run([&] {
        services_->keptMembers.clear();
        for (const auto& message : std::exchange(services_->kept, {}))
            services_->bus.send(
                message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("Permission denied")));
    });
}

void MockBus::setProperty(const char* path, const char* interface, const char* name, const QVariant& value)
{
    run([&] { services_->properties[{QLatin1String{path}, QLatin1String{interface}}][QLatin1String{name}] = value; });
}

void MockBus::changeProperty(const char* path, const char* interface, const char* name, const QVariant& value)
{
    setProperty(path, interface, name, value);
    emitSignal(path,
        "org.freedesktop.DBus.Properties",
        "PropertiesChanged",
        {QLatin1String{interface}, QVariantMap{{QLatin1String{name}, value}}, QStringList{}});
}

void MockBus::emitSignal(const char* path, const char* interface, const char* name, const QVariantList& arguments)
{
    run([&] {
        auto signal = QDBusMessage::createSignal(QLatin1String{path}, QLatin1String{interface}, QLatin1String{name});
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
    run([&] { all = services_->notifications; });
    return all;
}

void MockBus::setCapabilities(const QStringList& capabilities)
{
    run([&] { services_->capabilities = capabilities; });
}

std::size_t MockBus::mostHeld()
{
    std::size_t most = 0;
    run([&] { most = services_->most; });
    return most;
}

} // namespace vespra
