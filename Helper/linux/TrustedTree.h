#pragma once

#include "Helper/SleepSetting.h"
#include "HelperProtocol/FileDescriptor.h"

#include <filesystem>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace vespra {

/// Who may own a place and change what is in it.
struct Trust {
    std::vector<uid_t> owners;
    /// May write too: a group that nobody but an owner is in.
    std::optional<gid_t> privateGroup;
    /// Whether directories like /tmp will do: there everybody may add, but nobody change what is another's.
    bool acceptsStickyDirectories = false;
};

/// A tree of files, walked in such a way that only trusted users can have changed where a path leads, now or later.
/// Everything is opened step by step, and each directory and symbolic link on the way is looked at as it is opened.
class TrustedTree {
public:
    /// `root` stands for "/", at the start of a symbolic link too; what is above it is not looked at.
    TrustedTree(std::filesystem::path root, Trust trust);

    /// The directory at the absolute `path`, to work relative to; none where it does not exist. The failure is a
    /// sentence that names the place.
    std::expected<FileDescriptor, std::string> directory(const std::filesystem::path& path) const;
    /// Makes what is missing of it, readable for everybody as far as the umask lets it be, and adds that to `made`.
    std::expected<FileDescriptor, std::string> makeDirectory(
        const std::filesystem::path& path, std::vector<std::filesystem::path>& made) const;
    /// Fails where somebody else could change the open file; `path` is only for the sentence.
    HelperResult check(int descriptor, const std::filesystem::path& path) const;

    const std::filesystem::path& root() const { return root_; }

private:
    std::filesystem::path root_;
    Trust trust_;
};

/// "Cannot write /etc/x: No space left on device".
std::unexpected<std::string> fileFailure(const std::string& what, const std::filesystem::path& path, int error);

} // namespace vespra
