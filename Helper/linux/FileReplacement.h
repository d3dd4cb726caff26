#pragma once

#include "Helper/linux/TrustedTree.h"

namespace vespra {

/// Replaces several files of a tree, all of them or none. Beside each there is a ".new" meanwhile, complete and on the
/// disk before the first file is replaced, and an ".old", which is what was there. Neither is left at the end; what a
/// kill leaves behind goes the next time.
class FileReplacement {
public:
    explicit FileReplacement(const TrustedTree& tree)
        : tree_{tree}
    {
    }

    /// Makes the directories on the way, and writes the new content beside the file.
    HelperResult prepare(const std::filesystem::path& path, std::string_view content, mode_t mode);
    /// In the order in which they were prepared.
    HelperResult replace();
    /// Afterwards everything is as it was, but for what the failure names.
    HelperResult takeBack();
    /// From here on there is no way back.
    HelperResult settle();

    /// The directories that had to be made so far, outermost first.
    const std::vector<std::filesystem::path>& madeDirectories() const { return made_; }

private:
    struct File {
        FileDescriptor directory;
        std::filesystem::path path;
        bool isReplaced = false;
        bool wasThere = false;
    };
    static HelperResult replace(File& file);
    static HelperResult takeBack(File& file);

    const TrustedTree& tree_;
    std::vector<File> files_;
    std::vector<std::filesystem::path> made_;
};

/// The whole content of an open file, from its beginning. An error number where it cannot be read.
std::expected<std::string, int> contentOf(int descriptor);

/// Removes `path` and what an interrupted replacement has left beside it. Whether the file was there.
std::expected<bool, std::string> removeFile(int directory, const std::filesystem::path& path);

} // namespace vespra
