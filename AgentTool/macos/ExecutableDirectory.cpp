#include "AgentTool/SocketPath.h"

#include <mach-o/dyld.h>

#include <climits>
#include <cstdlib>

namespace vespra {

std::optional<std::string> executableDirectory()
{
    char given[PATH_MAX];
    char resolved[PATH_MAX];
    std::uint32_t size = sizeof given;
    if (_NSGetExecutablePath(given, &size) != 0 || !realpath(given, resolved))
        return {};
    const std::string_view program{resolved};
    return std::string{program.substr(0, program.rfind('/'))};
}

} // namespace vespra
