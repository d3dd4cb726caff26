#include "AgentTool/SocketPath.h"

#include <unistd.h>

#include <climits>

namespace vespra {

std::optional<std::string> executableDirectory()
{
    char path[PATH_MAX];
    const auto size = readlink("/proc/self/exe", path, sizeof path);
    if (size <= 0)
        return {};
    const std::string_view program{path, static_cast<std::size_t>(size)};
    return std::string{program.substr(0, program.rfind('/'))};
}

} // namespace vespra
