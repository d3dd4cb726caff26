// What the application is measured against: a program with Qt's core and its buses that does nothing.

#include <QCoreApplication>
#include <QDBusConnection>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application{argc, argv};
    std::ignore = QDBusConnection::systemBus().isConnected();
    std::ignore = QDBusConnection::sessionBus().isConnected();
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
