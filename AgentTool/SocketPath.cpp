#include "AgentTool/SocketPath.h"

#include "HelperProtocol/Brand.h"
#include "Host/Host.h"

#include <sys/stat.h>

#include <cstdlib>

namespace vespra {

namespace {

    bool isSocket(const std::string& path)
    {
        struct stat file{};
        return stat(path.c_str(), &file) == 0 && S_ISSOCK(file.st_mode);
    }

} // namespace

std::string socketPath()
{
    if (const char* given = std::getenv("VESPRA_AGENT_SOCKET"); given && *given)
        return given;
    if (const auto directory = executableDirectory())
        if (auto beside = directory->string() + "/agent.sock"; isSocket(beside))
            return beside;
    return Brand::agentSocketPath();
}

} // namespace vespra
