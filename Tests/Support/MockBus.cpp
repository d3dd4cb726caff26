#include "Tests/Support/MockBus.h"

#include "Tests/Support/QtApplication.h"
#include "Tests/Support/TextFiles.h"

#include <QDBusVariant>
#include <QJsonDocument>
#include <stdexcept>

namespace vespra {

MockBus::MockBus()
{
    const auto address = "unix:path=" + (folder_ / "bus").string();
    putText(folder_ / "bus.conf",
        "<busconfig><type>system</type><listen>" + address + "</listen><servicedir>" + folder_.path().string()
            + "</servicedir><policy context='default'><allow own='*'/><allow send_destination='*' eavesdrop='true'/>"
              "<allow receive_sender='*' eavesdrop='true'/></policy></busconfig>");
    for (const char* variable : {"DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"})
        qputenv(variable, QByteArray::fromStdString(address));
    const auto configuration = QString::fromStdString("--config-file=" + (folder_ / "bus.conf").string());
    daemon_.setProgram("dbus-daemon");
    daemon_.setArguments({"--nofork", "--nopidfile", "--print-address", configuration});
    for (auto* process : {&daemon_, &services_})
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    start();
}

void MockBus::start()
{
    daemon_.start();
    if (!daemon_.waitForReadyRead())
        throw std::runtime_error{"dbus-daemon does not start"};
    services_.start("/usr/bin/python3", QStringList{"-B", MOCK_SERVICES} + owned_);
    while (!dbus::isOwned(dbus::systemBus(), "app.vespra.Mock"))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

void MockBus::stop()
{
    for (auto* process : {&services_, &daemon_}) {
        process->kill();
        process->waitForFinished();
    }
}

void MockBus::restart()
{
    stop();
    start();
}

void MockBus::own(const QString& service)
{
    owned_ << service;
    ask("Own", {service});
}

void MockBus::reset()
{
    owned_.clear();
    ask("Reset");
}

QByteArray MockBus::ask(const QString& method, const QVariantList& arguments)
{
    const dbus::Target mock{"app.vespra.Mock", "/mock", "app.vespra.Mock"};
    const auto reply = dbus::systemBus().call(mock.method(method, arguments));
    if (reply.type() != QDBusMessage::ReplyMessage)
        throw std::runtime_error{"the services do not answer: " + reply.errorMessage().toStdString()};
    return reply.arguments().value(0).toString().toUtf8();
}

QVariantMap MockBus::state() { return QJsonDocument::fromJson(ask("Get")).toVariant().toMap(); }

void MockBus::makeActivatable(const std::string& service, const std::string& command)
{
    putText(
        folder_ / (service + ".service"), "[D-BUS Service]\nName=" + service + "\nUser=root\nExec=" + command + "\n");
    dbus::systemBus().call(dbus::bus().method("ReloadConfig"));
}

void MockBus::setProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value)
{
    ask("SetProperty", {path, interface, name, QVariant::fromValue(QDBusVariant{value})});
}

void MockBus::changeProperty(const QString& path, const QString& interface, const QString& name, const QVariant& value)
{
    setProperty(path, interface, name, value);
    emitSignal(path,
        "org.freedesktop.DBus.Properties",
        "PropertiesChanged",
        {interface, QVariantMap{{name, value}}, QStringList{}});
}

void MockBus::emitSignal(
    const QString& path, const QString& interface, const QString& name, const QVariantList& arguments)
{
    ask("Emit", {path, interface, name, QVariant{arguments}});
}

std::vector<std::string> MockBus::held()
{
    std::vector<std::string> all;
    for (const auto& each : state()["held"].toStringList())
        all.push_back(each.toStdString());
    return all;
}

QByteArray MockBus::deeds() { return QJsonDocument::fromVariant(state()["deeds"]).toJson(); }

std::map<unsigned, QVariantList> MockBus::notifications()
{
    std::map<unsigned, QVariantList> all;
    for (const auto& [number, arguments] : state()["notifications"].toMap().asKeyValueRange())
        all[number.toUInt()] = arguments.toList();
    return all;
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
