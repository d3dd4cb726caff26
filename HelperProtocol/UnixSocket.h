#pragma once

#include "HelperProtocol/FileDescriptor.h"

#include <sys/un.h>

#include <optional>
#include <string_view>

/// Stream sockets between the programs of one user. Failures leave their reason in `errno`. Any thread.
namespace vespra::unixSocket {

/// The longest path of a socket that every system takes, in bytes.
inline constexpr std::size_t longestPath = 103;

/// Absent for an empty path and for one that is too long.
std::optional<sockaddr_un> address(std::string_view path);

/// A stream socket, closed on exec; none on failure.
FileDescriptor make();

/// Not every system can set this while it opens a descriptor. A program that another thread starts just in between
/// inherits the descriptor; all it could do is hold open a connection on which nobody waits for the end.
void closeOnExec(int descriptor);

/// False if the mode could not be changed.
bool setBlocking(int descriptor, bool blocks);

} // namespace vespra::unixSocket
