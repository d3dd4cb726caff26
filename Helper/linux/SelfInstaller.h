#pragma once

#include "Helper/linux/TrustedTree.h"

namespace vespra {

/// The users whom an installation may trust.
struct InstallationUsers {
    /// Who alone may change what is installed: root, or another user in tests.
    uid_t owner = 0;
    /// Who has asked for the installation, and may change the program that is to be installed too.
    std::optional<uid_t> caller;
    /// A group that only the caller is in.
    std::optional<gid_t> callersGroup;
};

/// Makes a helper that no package has installed a service of the system: copies the program to where only root can
/// change it, and writes the system's files beside it. All names are other than a package's. Failures are sentences.
class SelfInstaller {
public:
    /// `root` is "/", or another tree for tests; all that is written is below it.
    explicit SelfInstaller(std::filesystem::path root, InstallationUsers users = {});

    /// Copies `program`, in place of what was installed before. On a failure everything is as it was. Refuses where a
    /// package has installed a helper, and where somebody else can change the program or a place that is written to.
    HelperResult install(const std::filesystem::path& program) const;
    /// Fails unless `install` would change nothing. A package's helper counts as installed.
    HelperResult verify(const std::filesystem::path& program) const;

    struct Removal {
        std::vector<std::filesystem::path> removed;
        std::vector<std::string> failures;
    };
    /// Removes what `install` wrote, as far as it is there, and the directories made for it that are empty.
    Removal uninstall() const;
    /// Removes what the service has kept, unless a package's helper works with it. After the helper has ended.
    Removal removeState() const;

    bool hasPackage() const;

private:
    struct File {
        std::filesystem::path path;
        std::string content;
        mode_t mode;
    };
    HelperResult checkProgram(int program) const;
    std::expected<std::string, std::string> readProgram(const std::filesystem::path& program) const;
    std::vector<File> files(std::string program) const;
    HelperResult replace(std::vector<File> files) const;
    HelperResult verify(const std::vector<File>& files) const;
    HelperResult verify(const File& file) const;
    std::expected<std::string, std::string> listedDirectories() const;
    void remove(const std::filesystem::path& path, Removal& removal) const;
    std::filesystem::path below(const std::filesystem::path& path) const;
    FileDescriptor lock() const;

    TrustedTree system_;
    TrustedTree source_;
};

} // namespace vespra
