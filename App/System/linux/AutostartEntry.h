#pragma once

#include "App/System/LoginService.h"

#include <QString>
#include <QStringList>

namespace vespra {

/// A login item of the desktop: a file of the name that the application has everywhere, in the user's autostart folder.
/// One of the system's stays as it is; the user's own counts before it. Main thread only.
class AutostartEntry final : public LoginService {
public:
    struct Place {
        /// The user's own file.
        QString file;
        /// The system's, the first one that is there counts.
        QStringList systemFiles;

        /// Where this user's desktop looks for `name`, without its ending.
        static Place standard(const QString& name);
    };
    /// `title`: what users call the application. `program`: the absolute path of what is started.
    AutostartEntry(Place place, QString title, QString program);

    LoginServiceStatus status() const override;
    std::expected<void, std::string> registerApplication() override;
    std::expected<void, std::string> unregisterApplication() override;

private:
    std::optional<QString> systemFile() const;
    std::expected<void, std::string> write(const QByteArray& entry) const;

    Place place_;
    QString title_;
    QString program_;
};

} // namespace vespra
