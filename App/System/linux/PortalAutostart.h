#pragma once

#include "App/System/linux/PortalRequest.h"
#include "App/System/LoginService.h"
#include "Log/SystemLog.h"

#include <memory>
#include <QStringList>

namespace vespra {

/// A login item of the desktop's that a program in a sandbox gets through the portal, which may ask the user. No portal
/// tells what is registered, so the last answer counts: it is kept as a file that is there or not. Main thread only.
class PortalAutostart final : public LoginService {
public:
    /// A sandbox surrounds this process; its own autostart folder is not the desktop's.
    static bool isNeeded();
    /// "login-item" in the application's own configuration folder.
    static QString standardFile(const QString& application);

    /// `reason` is shown to the user. `command`: what is started in the sandbox.
    PortalAutostart(QString file, QString reason, QStringList command, SystemLog log);

    LoginServiceStatus status() const override;
    /// Both ask and go on; `onChange` follows.
    std::expected<void, std::string> registerApplication() override;
    std::expected<void, std::string> unregisterApplication() override;

private:
    void ask(bool starts);
    void answered(bool starts, const PortalRequest::Response& response);
    void keep(bool starts);

    QString file_;
    QString reason_;
    QStringList command_;
    SystemLog log_;
    std::unique_ptr<PortalRequest> request_;
};

} // namespace vespra
