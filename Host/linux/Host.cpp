#include "Host/Host.h"

#include "HelperProtocol/Brand.h"

#include <climits>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vespra {

std::optional<std::filesystem::path> executableDirectory()
{
    char path[PATH_MAX];
    const auto size = readlink("/proc/self/exe", path, sizeof path);
    if (size <= 0)
        return {};
    return std::filesystem::path{std::string_view{path, static_cast<std::size_t>(size)}}.parent_path();
}

std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name)
{
    const auto directory = executableDirectory().value_or("");
    std::error_code error;
    for (const auto& path : {directory / name, directory.parent_path() / "libexec/vespra" / name})
        if (std::filesystem::is_regular_file(path, error))
            return path;
    return {};
}

std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name)
{
    const auto path = executableDirectory().value_or("").parent_path() / "share" / Brand::appName() / name;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? std::optional{path} : std::nullopt;
}

std::optional<uid_t> peerUser(int descriptor)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return {};
    return peer.uid;
}

bool syncToDisk(int descriptor) { return fsync(descriptor) == 0; }

void nameThisThread(const char* name) { pthread_setname_np(pthread_self(), name); }

int inAutoreleasePool(const std::function<int()>& program) { return program(); }

} // namespace vespra
