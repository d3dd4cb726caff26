#include "App/System/linux/PortalAutostart.h"

#include "Core/Lifetime.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace vespra {

bool PortalAutostart::isNeeded() { return QFileInfo::exists(QStringLiteral("/.flatpak-info")); }

QString PortalAutostart::standardFile(const QString& application)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + application
        + QStringLiteral("/login-item");
}

PortalAutostart::PortalAutostart(QString file, QString reason, QStringList command, SystemLog log)
    : file_{std::move(file)}
    , reason_{std::move(reason)}
    , command_{std::move(command)}
    , log_{std::move(log)}
{
}

LoginServiceStatus PortalAutostart::status() const
{
    return QFileInfo::exists(file_) ? LoginServiceStatus::enabled : LoginServiceStatus::notRegistered;
}

std::expected<void, std::string> PortalAutostart::registerApplication()
{
    ask(true);
    return {};
}

std::expected<void, std::string> PortalAutostart::unregisterApplication()
{
    ask(false);
    return {};
}

void PortalAutostart::ask(bool starts)
{
    request_ = std::make_unique<PortalRequest>(QStringLiteral("org.freedesktop.portal.Background"),
        QStringLiteral("RequestBackground"),
        QVariantList{QString{} /* window */},
        QVariantMap{{QStringLiteral("reason"), reason_},
            {QStringLiteral("autostart"), starts},
            {QStringLiteral("commandline"), command_},
            {QStringLiteral("dbus-activatable"), false}},
        [this, starts](const PortalRequest::Response& response) { answered(starts, response); });
}

void PortalAutostart::answered(bool starts, const PortalRequest::Response& response)
{
    if (response)
        keep(response->value(QStringLiteral("autostart")).toBool());
    if (!response || (status() == LoginServiceStatus::enabled) != starts)
        log_.error(starts ? "Ouverture à la connexion : refusée par le portail"
                          : "Ouverture à la connexion : le portail ne la retire pas");
    notify(onChange);
}

void PortalAutostart::keep(bool starts)
{
    QFile file{file_};
    if (!starts) {
        file.remove();
        return;
    }
    QDir{}.mkpath(QFileInfo{file_}.path());
    if (!file.open(QIODevice::WriteOnly))
        log_.error("Ouverture à la connexion : " + file.errorString().toStdString());
}

} // namespace vespra
