#pragma once

#include "App/System/FeedUpdater.h"
#include "App/System/linux/DBus.h"

#include <filesystem>
#include <optional>
#include <QStringList>

namespace vespra {

/// Runs vespra-update, a process for each check and each download, and gives packages to PackageKit's session service
/// or, where nobody owns it, to what opens files of their kind.
class LinuxUpdateTools final : public UpdateTools {
public:
    /// `program`: the absolute path of vespra-update. `opener`: the program that opens a file.
    LinuxUpdateTools(std::filesystem::path program, QString opener);

    std::unique_ptr<UpdateRun> run(const std::vector<std::string>& arguments, const std::string& input,
        std::function<void(const UpdateMessage&)> onMessage, std::function<void()> onEnd) override;
    void open(const std::string& package, std::function<void(bool opened)> onDone) override;

private:
    void openByDesktop(const QString& package, const std::function<void(bool opened)>& onDone) const;

    QString program_;
    QString opener_;
    dbus::Call asked_;
};

/// Null where the application is not built to look for new versions, or cannot.
std::unique_ptr<Updater> makeFeedUpdater(TaskScheduling& tasks, const WallClock& clock);

} // namespace vespra
