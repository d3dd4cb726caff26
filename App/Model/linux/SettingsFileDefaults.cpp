#include "App/Model/linux/SettingsFileDefaults.h"

#include "HelperProtocol/Brand.h"

#include <QVariant>

namespace vespra {

namespace {

    // An INI file cannot tell a boolean from the text "true", so booleans carry a mark.
    const QString yes = QStringLiteral("bool:true"), no = QStringLiteral("bool:false");

    QString keyText(std::string_view key) { return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())); }

} // namespace

SettingsFileDefaults::SettingsFileDefaults(const QString& path)
    : file_{path, QSettings::IniFormat}
    , log_{Brand::appBundleID(), "preferences"}
{
}

std::optional<std::string> SettingsFileDefaults::data(std::string_view key) const
{
    const auto value = file_.value(keyText(key));
    if (value.metaType() != QMetaType::fromType<QByteArray>())
        return {};
    return value.toByteArray().toStdString();
}

std::optional<bool> SettingsFileDefaults::boolean(std::string_view key) const
{
    const auto value = file_.value(keyText(key));
    if (value == yes)
        return true;
    if (value == no)
        return false;
    return {};
}

void SettingsFileDefaults::setData(std::string_view key, std::string_view data)
{
    write(key, QByteArray{data.data(), static_cast<qsizetype>(data.size())});
}

void SettingsFileDefaults::setBoolean(std::string_view key, bool value) { write(key, value ? yes : no); }

void SettingsFileDefaults::write(std::string_view key, const QVariant& value)
{
    // A QSettings never clears its error, so each write has an instance of its own. All instances of a file share their
    // values.
    QSettings writer{file_.fileName(), file_.format()};
    writer.setValue(keyText(key), value);
    writer.sync();
    isStored_ = writer.status() != QSettings::AccessError;
    if (!isStored_)
        log_.error("préférences non enregistrées : " + file_.fileName().toStdString());
}

} // namespace vespra
