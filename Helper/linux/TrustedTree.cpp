#include "Helper/linux/TrustedTree.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <list>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace vespra {

namespace fs = std::filesystem;

namespace {

    constexpr int linkLimit = 40; // the kernel's own

    /// A list beside the mode may give rights to people whom the mode does not name. What it grants beyond its owner's
    /// is never more than the group's bits, which stand for its mask then.
    bool hasAccessList(int descriptor)
    {
        const auto path = "/proc/self/fd/" + std::to_string(descriptor);
        return getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) >= 0
            || (errno != ENODATA && errno != ENOTSUP);
    }

    /// One way through the tree, from the root to a directory.
    class Walk {
    public:
        Walk(const TrustedTree& tree, const fs::path& path, std::vector<fs::path>* made)
            : tree_{tree}
            , rest_{path.begin(), path.end()}
            , made_{made}
        {
        }

        std::expected<FileDescriptor, std::string> directory()
        {
            while (!rest_.empty()) {
                const auto part = rest_.front();
                rest_.pop_front();
                if (part.empty() || part == ".")
                    continue;
                if (const auto stepped = step(part); !stepped)
                    return std::unexpected{stepped.error()};
                if (!at_)
                    break;
            }
            return std::move(at_);
        }

    private:
        /// Nothing is open afterwards where there is nothing.
        HelperResult step(const fs::path& part)
        {
            const bool isRoot = part.is_absolute();
            auto name = isRoot ? tree_.root() : name_ / part;
            if (made_ && !isRoot)
                if (const auto is = make(part, name); !is)
                    return is;
            FileDescriptor next{isRoot ? open(tree_.root().c_str(), O_PATH | O_CLOEXEC)
                                       : openat(at_.get(), part.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)};
            if (!next && (errno != ENOENT || made_))
                return fileFailure("Cannot open", name, errno);
            if (next)
                if (const auto checked = tree_.check(next.get(), name); !checked)
                    return checked;
            return next ? enter(std::move(next), std::move(name)) : leave();
        }

        HelperResult leave()
        {
            at_.reset();
            return {};
        }

        HelperResult enter(FileDescriptor next, fs::path name)
        {
            struct stat status{};
            if (fstat(next.get(), &status) != 0)
                return fileFailure("Cannot read", name, errno);
            if (S_ISLNK(status.st_mode))
                return follow(next.get(), name);
            if (!S_ISDIR(status.st_mode))
                return fileFailure("Cannot use", name, ENOTDIR);
            at_ = std::move(next);
            name_ = std::move(name);
            return {};
        }

        HelperResult follow(int link, const fs::path& name)
        {
            std::array<char, PATH_MAX> target{};
            const auto size = readlinkat(link, "", target.data(), target.size());
            if (size < 0 || ++links_ > linkLimit)
                return fileFailure("Cannot follow", name, size < 0 ? errno : ELOOP);
            const fs::path path{std::string{target.data(), static_cast<std::size_t>(size)}};
            rest_.insert(rest_.begin(), path.begin(), path.end());
            return {};
        }

        HelperResult make(const fs::path& part, const fs::path& name)
        {
            if (mkdirat(at_.get(), part.c_str(), 0755) == 0)
                made_->push_back(name);
            else if (errno != EEXIST)
                return fileFailure("Cannot make", name, errno);
            return {};
        }

        const TrustedTree& tree_;
        std::list<fs::path> rest_;
        std::vector<fs::path>* made_;
        FileDescriptor at_;
        fs::path name_;
        int links_ = 0;
    };

} // namespace

std::unexpected<std::string> fileFailure(const std::string& what, const fs::path& path, int error)
{
    return std::unexpected{what + " " + path.string() + ": " + std::strerror(error)};
}

TrustedTree::TrustedTree(fs::path root, Trust trust)
    : root_{std::move(root)}
    , trust_{std::move(trust)}
{
}

std::expected<FileDescriptor, std::string> TrustedTree::directory(const fs::path& path) const
{
    return Walk{*this, path, nullptr}.directory();
}

std::expected<FileDescriptor, std::string> TrustedTree::makeDirectory(
    const fs::path& path, std::vector<fs::path>& made) const
{
    return Walk{*this, path, &made}.directory();
}

HelperResult TrustedTree::check(int descriptor, const fs::path& path) const
{
    struct stat status{};
    if (fstat(descriptor, &status) != 0)
        return fileFailure("Cannot read", path, errno);
    const auto mode = status.st_mode;
    if (std::ranges::find(trust_.owners, status.st_uid) == trust_.owners.end())
        return std::unexpected{
            path.string() + " can be changed by others: it belongs to user " + std::to_string(status.st_uid) + "."};
    // A link has no mode of its own, and what a sticky directory holds has been checked to have a trusted owner.
    if (S_ISLNK(mode) || (S_ISDIR(mode) && (mode & S_ISVTX) && trust_.acceptsStickyDirectories))
        return {};
    if (mode & S_IWOTH)
        return std::unexpected{path.string() + " can be changed by others: everybody may write to it."};
    if ((mode & S_IWGRP) && (trust_.privateGroup != status.st_gid || hasAccessList(descriptor)))
        return std::unexpected{path.string() + " can be changed by others: group " + std::to_string(status.st_gid)
            + " or an access list may write to it."};
    return {};
}

} // namespace vespra
