#include "HelperProtocol/UnixSocket.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace vespra::unixSocket {

std::optional<sockaddr_un> address(std::string_view path)
{
    static_assert(sizeof(sockaddr_un::sun_path) > longestPath);
    if (path.empty() || path.size() > longestPath) {
        errno = path.empty() ? ENOENT : ENAMETOOLONG;
        return {};
    }
    sockaddr_un result{};
    result.sun_family = AF_UNIX;
    std::ranges::copy(path, result.sun_path);
    return result;
}

FileDescriptor make()
{
    FileDescriptor made{socket(AF_UNIX, SOCK_STREAM, 0)};
    if (made)
        closeOnExec(made.get());
    return made;
}

void closeOnExec(int descriptor) { fcntl(descriptor, F_SETFD, FD_CLOEXEC); }

bool setBlocking(int descriptor, bool blocks)
{
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && fcntl(descriptor, F_SETFL, blocks ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0;
}

} // namespace vespra::unixSocket
