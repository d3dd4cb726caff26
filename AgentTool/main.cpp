#include "AgentTool/EventSender.h"
#include "AgentTool/HookInputReader.h"
#include "AgentTool/SocketPath.h"
#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"
#include "Core/Scheduling/WallClock.h"
#include "HelperProtocol/AutoreleasePool.h"

#include <csignal>
#include <exception>
#include <unistd.h>

using namespace vespra;

namespace {

void report(HookInputReader& reader, std::string_view agentName)
{
    const auto agent = fromRawValue<AgentKind>(agentName);
    const auto input = reader.read();
    if (!input)
        return reader.drain();
    if (!agent)
        return;
    if (const auto event = agentEvent(*input, *agent, SystemClock{}.now()))
        sendLine(encoded(*event), socketPath());
    else if (!parsedHookInput(*input))
        reader.drain();
}

} // namespace

/// Passes one event of an agent on to the application: `vespra-agent claude` or `vespra-agent codex`, with the hook's
/// JSON on standard input. Whatever happens it says nothing and exits with 0: agents take other statuses for orders,
/// and text for words to their model.
int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    std::set_terminate([] { _exit(0); });
    HookInputReader reader{STDIN_FILENO};
    return inAutoreleasePool([&]() -> int {
        try {
            report(reader, argc == 2 ? argv[1] : "");
        } catch (...) {
            // Out of memory: the input was too much.
            reader.drain();
        }
        // Past the clean-up at exit, which costs time and has nothing to do.
        _exit(0);
    });
}
