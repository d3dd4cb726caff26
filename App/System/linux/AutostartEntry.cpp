#include "App/System/linux/AutostartEntry.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>

namespace vespra {

namespace {

    constexpr auto group = "[Desktop Entry]\nType=Application\nName=";

    bool starts(const QString& file)
    {
        const QSettings entry{file, QSettings::IniFormat};
        const auto value = [&](const char* key, bool byDefault) {
            return entry.value(QStringLiteral("Desktop Entry/") + QLatin1String{key}, byDefault).toBool();
        };
        return !value("Hidden", false) && value("X-GNOME-Autostart-enabled", true);
    }

    /// As a quoted argument of a command line in a desktop entry: escaped for the quotes, for field codes, and then for
    /// the file.
    QString quoted(const QString& path)
    {
        QString text;
        for (const auto character : path) {
            if (QStringLiteral("\"`$\\").contains(character))
                text += u'\\';
            else if (character == u'%')
                text += u'%';
            text += character;
        }
        return u'"' + text.replace(u'\\', QStringLiteral("\\\\")) + u'"';
    }

} // namespace

AutostartEntry::Place AutostartEntry::Place::standard(const QString& name)
{
    const auto fileIn = [&](const QString& folder) { return folder + "/autostart/" + name + ".desktop"; };
    const auto own = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    Place place{.file = fileIn(own), .systemFiles = {}};
    for (const auto& folder : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation))
        if (folder != own)
            place.systemFiles << fileIn(folder);
    return place;
}

AutostartEntry::AutostartEntry(Place place, QString title, QString program)
    : place_{std::move(place)}
    , title_{std::move(title)}
    , program_{std::move(program)}
{
}

std::optional<QString> AutostartEntry::systemFile() const
{
    for (const auto& file : place_.systemFiles)
        if (QFileInfo::exists(file))
            return file;
    return {};
}

LoginServiceStatus AutostartEntry::status() const
{
    const auto file = QFileInfo::exists(place_.file) ? std::optional{place_.file} : systemFile();
    return file && starts(*file) ? LoginServiceStatus::enabled : LoginServiceStatus::notRegistered;
}

std::expected<void, std::string> AutostartEntry::registerApplication()
{
    return write(group + title_.toUtf8() + "\nExec=" + quoted(program_).toUtf8()
        + "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
}

std::expected<void, std::string> AutostartEntry::unregisterApplication()
{
    // Only a file of the user's own overrides one of the system's.
    if (systemFile())
        return write(group + title_.toUtf8() + "\nHidden=true\n");
    if (QFile file{place_.file}; file.exists() && !file.remove())
        return std::unexpected{place_.file.toStdString() + " (" + file.errorString().toStdString() + ")"};
    return {};
}

std::expected<void, std::string> AutostartEntry::write(const QByteArray& entry) const
{
    QDir{}.mkpath(QFileInfo{place_.file}.path());
    QSaveFile file{place_.file};
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit())
        return std::unexpected{place_.file.toStdString() + " (" + file.errorString().toStdString() + ")"};
    return {};
}

} // namespace vespra
