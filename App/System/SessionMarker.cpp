#include "App/System/SessionMarker.h"

#include "HelperProtocol/Brand.h"

#include <cerrno>
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
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path{path_}.parent_path(), ignored);
    FileDescriptor file{open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)};
    if (!file || flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return;
    const auto text = std::to_string(getpid()) + " " + platform_ + "\n";
    if (ftruncate(file.get(), 0) == 0 && write(file.get(), text.data(), text.size()) == std::ssize(text))
        lock_ = std::move(file);
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
