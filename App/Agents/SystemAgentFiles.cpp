#include "App/Agents/AgentFiles.h"
#include "HelperProtocol/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>

namespace vespra {

namespace {

    std::optional<FileFacts> factsOf(const struct stat& file)
    {
        if (!S_ISREG(file.st_mode))
            return {};
        return FileFacts{.device = static_cast<std::uint64_t>(file.st_dev),
            .inode = file.st_ino,
            .size = static_cast<std::uint64_t>(file.st_size)};
    }

    std::optional<FileFacts> factsOf(int descriptor)
    {
        struct stat file{};
        return fstat(descriptor, &file) == 0 ? factsOf(file) : std::nullopt;
    }

    class SystemAgentFiles final : public AgentFiles {
    public:
        std::optional<FileFacts> facts(const std::string& path) override
        {
            struct stat file{};
            return stat(path.c_str(), &file) == 0 ? factsOf(file) : std::nullopt;
        }

        /// Something else may have taken the file's place since its facts were read, so opening must not block, and
        /// what was opened is looked at once more.
        std::optional<std::string> read(
            const std::string& path, const FileFacts& expected, std::uint64_t from, std::uint64_t length) override
        {
            const FileDescriptor file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)};
            const auto facts = file ? factsOf(file.get()) : std::nullopt;
            if (!facts || !facts->isSameFile(expected))
                return {};
            std::string bytes(length, '\0');
            std::size_t done = 0;
            while (done < bytes.size()) {
                const auto count
                    = pread(file.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(from + done));
                if (count < 0 && errno == EINTR)
                    continue;
                if (count < 0)
                    return {};
                if (count == 0)
                    break;
                done += static_cast<std::size_t>(count);
            }
            bytes.resize(done);
            return bytes;
        }

        std::vector<std::string> names(const std::string& folder, std::size_t limit) override
        {
            std::vector<std::string> names;
            const std::unique_ptr<DIR, int (*)(DIR*)> directory{opendir(folder.c_str()), closedir};
            while (const auto* entry = directory && names.size() < limit ? readdir(directory.get()) : nullptr)
                names.emplace_back(entry->d_name);
            return names;
        }
    };

} // namespace

AgentFiles& systemAgentFiles()
{
    static SystemAgentFiles files;
    return files;
}

} // namespace vespra
