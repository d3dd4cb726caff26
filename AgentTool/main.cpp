#include "AgentTool/EventSender.h"
#include "AgentTool/HookInputReader.h"
#include "AgentTool/SocketPath.h"
#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"
#include "Core/Scheduling/WallClock.h"
#include "Host/Host.h"
#include "HelperProtocol/Process.h"

#include <csignal>
#include <exception>
#include <sys/time.h>
#include <unistd.h>

using namespace vespra;

namespace {

void report(HookInputReader& reader, std::string_view agentName)
{
    const auto agent = fromRawValue<AgentKind>(agentName);
    const auto text = reader.read();
    const auto input = text ? parsedHookInput(*text) : std::nullopt;
    if (!input)
        return reader.drain();
    if (const auto event = agent ? agentEvent(*input, *agent, SystemClock{}.now()) : std::nullopt)
        sendLine(encoded(*event), socketPath());
}

/// Ends the program, come what may: its own limits end waiting, but a read that another reader of the same input was
/// quicker with blocks.
void limitTime()
{
    constexpr timeval limit{.tv_sec = 2, .tv_usec = 0};
    std::signal(SIGALRM, [](int) { _exit(0); });
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
    const itimerval once{.it_interval = {}, .it_value = limit};
    setitimer(ITIMER_REAL, &once, nullptr);
    // Reading a terminal in the background fails instead of stopping the program.
    std::signal(SIGTTIN, SIG_IGN);
}

} // namespace

/// Passes one event of an agent on to the application: `vespra-agent claude` or `vespra-agent codex`, with the hook's
/// JSON on standard input. Whatever happens it says nothing and exits with 0: agents take other statuses for orders,
/// and text for words to their model.
int main(int argc, char** argv)
{
    process::openStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    std::set_terminate([] { _exit(0); });
    limitTime();
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
