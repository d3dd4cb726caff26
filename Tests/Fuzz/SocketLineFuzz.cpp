#include "Core/Agents/AgentEvent.h"
#include "Tests/Fuzz/Check.h"

#include <cstdint>

using namespace vespra;

/// What a line on the socket says survives being written again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto event = decodedAgentEvent({reinterpret_cast<const char*>(data), size});
    if (!event)
        return 0;
    check(!event->sessionID.empty());
    const auto again = decodedAgentEvent(encoded(*event));
    check(again.has_value());
    check(again->sessionID == event->sessionID && again->cwd == event->cwd && again->signal == event->signal);
    return 0;
}
