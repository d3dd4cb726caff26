#include "HelperProtocol/UnixSocket.h"

#include <unistd.h>

namespace vespra::unixSocket {

std::optional<uid_t> peerUser(int descriptor)
{
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(descriptor, &user, &group) != 0)
        return {};
    return user;
}

} // namespace vespra::unixSocket
