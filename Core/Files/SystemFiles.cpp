#include "Core/Files/FileSystem.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vespra {

namespace {

    namespace fs = std::filesystem;

    std::unexpected<std::error_code> lastError()
    {
        return std::unexpected{std::error_code{errno, std::generic_category()}};
    }

    std::expected<void, std::error_code> checked(int result)
    {
        if (result < 0)
            return lastError();
        return {};
    }

    class Descriptor {
    public:
        explicit Descriptor(int descriptor)
            : descriptor_{descriptor}
        {
        }
        ~Descriptor()
        {
            if (isOpen())
                ::close(descriptor_);
        }
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;

        bool isOpen() const { return descriptor_ >= 0; }
        int get() const { return descriptor_; }
        /// Some file systems report only here that the bytes could not be kept.
        int close() { return ::close(std::exchange(descriptor_, -1)); }

    private:
        int descriptor_;
    };

    /// `likelySize` is a hint that saves reallocations.
    std::expected<std::string, std::error_code> allBytes(int descriptor, std::size_t likelySize)
    {
        std::string bytes;
        bytes.reserve(likelySize);
        char piece[64 * 1024];
        while (true) {
            const auto count = ::read(descriptor, piece, sizeof piece);
            if (count == 0)
                return bytes;
            if (count > 0)
                bytes.append(piece, static_cast<std::size_t>(count));
            else if (errno != EINTR)
                return lastError();
        }
    }

    class SystemFiles final : public FileSystem {
    public:
        bool isDirectory(const fs::path& path) override
        {
            struct stat status;
            return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        }

        Result<std::optional<fs::path>> linkTarget(const fs::path& path) override
        {
            std::error_code error;
            auto target = fs::read_symlink(path, error);
            if (!error)
                return target;
            if (error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory)
                return std::nullopt;
            return std::unexpected{error};
        }

        Result<std::optional<FileContents>> read(const fs::path& path) override
        {
            // Without O_NONBLOCK opening a named pipe would wait for its writer.
            const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
            if (!file.isOpen() && errno == ENOENT)
                return std::nullopt;
            struct stat status;
            if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
                return lastError();
            if (!S_ISREG(status.st_mode))
                return std::unexpected{std::make_error_code(std::errc::invalid_argument)};
            auto bytes = allBytes(file.get(), static_cast<std::size_t>(status.st_size));
            if (!bytes)
                return std::unexpected{bytes.error()};
            return FileContents{.bytes = *std::move(bytes),
                .attributes = {.mode = status.st_mode & 07777u,
                    .owner = FileAttributes::Owner{.user = status.st_uid, .group = status.st_gid}}};
        }

        Result<void> createDirectory(const fs::path& path) override { return checked(::mkdir(path.c_str(), 0700)); }

        Result<void> createFile(const fs::path& path) override
        {
            const Descriptor file{::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600)};
            return checked(file.get());
        }

        Result<void> write(const fs::path& path, std::string_view bytes) override
        {
            Descriptor file{::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW)};
            if (!file.isOpen())
                return lastError();
            while (!bytes.empty()) {
                const auto count = ::write(file.get(), bytes.data(), bytes.size());
                if (count >= 0)
                    bytes.remove_prefix(static_cast<std::size_t>(count));
                else if (errno != EINTR)
                    return lastError();
            }
            return checked(file.close());
        }

        Result<void> setAttributes(const fs::path& path, const FileAttributes& attributes) override
        {
            // The owner first: changing it can take permission bits away. Only its members and root can give a file to
            // a group.
            constexpr auto sameGroup = static_cast<gid_t>(-1);
            if (const auto& owner = attributes.owner)
                if (::lchown(path.c_str(), owner->user, owner->group) != 0
                    && ::lchown(path.c_str(), owner->user, sameGroup) != 0)
                    return lastError();
            return checked(::chmod(path.c_str(), static_cast<mode_t>(attributes.mode)));
        }

        Result<void> sync(const fs::path& path) override
        {
            const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW)};
            if (!file.isOpen())
                return lastError();
            // Some file systems store directories without being asked, and answer a sync with an error.
            if (::fsync(file.get()) != 0 && errno != EINVAL && errno != ENOTSUP)
                return lastError();
            return {};
        }

        Result<void> rename(const fs::path& from, const fs::path& to) override
        {
            return checked(std::rename(from.c_str(), to.c_str()));
        }

        Result<void> remove(const fs::path& path) override { return checked(::unlink(path.c_str())); }
    };

} // namespace

FileSystem& systemFiles()
{
    static SystemFiles files;
    return files;
}

} // namespace vespra
