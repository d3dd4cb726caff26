#pragma once

#include "App/Model/UserDefaults.h"
#include "Log/SystemLog.h"

#include <QSettings>

namespace vespra {

/// User defaults in an INI file. Each write replaces the file as a whole, under a lock: other programs see the old one
/// or the new one.
class SettingsFileDefaults final : public UserDefaults {
public:
    /// Folders on the way to `path` are made when something is written.
    explicit SettingsFileDefaults(const QString& path);

    std::optional<std::string> data(std::string_view key) const override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setData(std::string_view key, std::string_view data) override;
    void setBoolean(std::string_view key, bool value) override;
    bool isStored() const override { return isStored_; }

private:
    void write(std::string_view key, const QVariant& value);

    QSettings file_;
    SystemLog log_;
    bool isStored_ = true;
};

} // namespace vespra
