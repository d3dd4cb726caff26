#include "App/Model/linux/SettingsFileDefaults.h"
#include "HelperProtocol/Brand.h"

#include <QStandardPaths>

namespace vespra {

std::unique_ptr<UserDefaults> makeUserDefaults()
{
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const auto name = QString::fromStdString(Brand::appName());
    return std::make_unique<SettingsFileDefaults>(folder + u'/' + name + u'/' + name + QStringLiteral(".ini"));
}

} // namespace vespra
