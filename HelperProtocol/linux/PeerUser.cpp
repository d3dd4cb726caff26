#include "HelperProtocol/UnixSocket.h"

#include <sys/socket.h>

namespace vespra::unixSocket {

std::optional<uid_t> peerUser(int descriptor)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return {};
    return peer.uid;
}

} // namespace vespra::unixSocket
