#include "App/System/SessionMarker.h"

#include "HelperProtocol/Brand.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/file.h>

namespace vespra {

void SessionMarker::sessionRuns(bool runs)
{
    if (runs == static_cast<bool>(lock_))
        return;
    if (!runs)
        return lock_.reset();
    if (read(path_))
        return;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path{path_}.parent_path(), ignored);
    // Locked and written before it gets its name: nobody sees it half done.
    const auto draft = path_ + "." + std::to_string(getpid());
    FileDescriptor file{open(draft.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600)};
    const auto text = std::to_string(getpid()) + " " + platform_ + "\n";
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0
        && write(file.get(), text.data(), text.size()) == std::ssize(text) && rename(draft.c_str(), path_.c_str()) == 0)
        lock_ = std::move(file);
    else
        unlink(draft.c_str());
}

std::optional<SessionMarker::Session> SessionMarker::read(const std::string& path)
{
    const FileDescriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (!file || flock(file.get(), LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return {};
    Session session;
    std::ifstream{path} >> session.pid >> session.platform;
    return session;
}

std::string SessionMarker::defaultPath() { return Brand::applicationSupportDirectory() + "/session.lock"; }

} // namespace vespra
