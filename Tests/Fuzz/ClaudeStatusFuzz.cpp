#include "Core/Agents/ClaudeStatus.h"
#include "Tests/Fuzz/Check.h"

#include <cstdint>
#include <string>
#include <tuple>

using namespace vespra;

/// A status is that of the first JSON value, whatever stands behind it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text{reinterpret_cast<const char*>(data), size};
    std::ignore = claudeStatusFolder(text);
    const auto status = claudeStatus(text);
    if (!status)
        return 0;
    check(status->pid > 0 && !status->sessionID.empty());
    check(claudeStatus(text + "\"}remains") == status);
    return 0;
}
