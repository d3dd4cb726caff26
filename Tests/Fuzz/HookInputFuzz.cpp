#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"
#include "Tests/Fuzz/Check.h"

#include <cstdint>

using namespace vespra;

/// An event that the hook command makes of its input reaches the application as it was, and an input that makes an
/// event is known to be complete.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input{reinterpret_cast<const char*>(data), size};
    const auto event = agentEvent(input, allAgentKinds[size % 2], Instant{});
    if (!event)
        return 0;
    check(!event->sessionID.empty());
    const auto line = encoded(*event);
    check(!line.contains('\n'));
    check(decodedAgentEvent(line) == *event);

    HookInputProgress progress;
    progress.add(input.substr(0, size / 2));
    progress.add(input.substr(size / 2));
    check(progress.isComplete());
    return 0;
}
