#pragma once

#include "Helper/SleepSetting.h"

#include <filesystem>
#include <vector>

namespace vespra {

/// Makes a helper that no package has installed a service of the system: copies the program to where only root can
/// change it, and writes the system's files beside it.
class SelfInstaller {
public:
    /// `root` is "/", or another tree for tests; all that is written is below it.
    explicit SelfInstaller(std::filesystem::path root);

    /// Copies `program`. On a failure nothing of it stays. Refuses where a package has installed a helper, and where
    /// somebody other than this user may write.
    HelperResult install(const std::filesystem::path& program) const;
    /// Removes what `install` wrote, as far as it is there.
    HelperResult uninstall() const;

private:
    struct File {
        std::filesystem::path path;
        std::string content;
    };
    std::filesystem::path below(const std::filesystem::path& path) const { return root_ / path.relative_path(); }
    HelperResult checkDirectory(const std::filesystem::path& directory) const;
    HelperResult writeAll(const std::filesystem::path& program) const;

    std::filesystem::path root_;
    std::filesystem::path program_;
    std::vector<File> files_;
};

/// Has the bus and the service manager read their files again, and ends a helper that runs. Where there is no service
/// manager the bus alone is asked.
HelperResult reloadSystem();

} // namespace vespra
