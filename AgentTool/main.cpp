#include "AgentTool/CallingAgent.h"
#include "AgentTool/EventSender.h"
#include "AgentTool/HookInputReader.h"
#include "AgentTool/SocketPath.h"
#include "Core/Agents/AgentEvent.h"
#include "Core/Scheduling/WallClock.h"
#include "HelperProtocol/Process.h"
#include "Host/Host.h"

#include <csignal>
#include <exception>
#include <sys/time.h>
#include <unistd.h>

using namespace vespra;

namespace {

void report(HookInputReader& reader, std::string_view agentName)
{
    const auto agent = fromRawValue<AgentKind>(agentName);
    const auto input = reader.read();
    if (!input)
        return reader.drain();
    auto event = agent ? agentEvent(*input, *agent, SystemClock{}.now()) : std::nullopt;
    if (!event)
        return;
    nameProcess(*event);
    sendLine(encoded(*event), socketPath());
}

/// Ends the program after two seconds, whatever blocks. Its other limits bound only the waiting in `poll`: a read
/// blocks all the same if another process that shares the input takes the bytes first.
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
/// JSON on standard input. Whatever happens, it prints nothing and exits with 0: agents treat other statuses as
/// instructions, and pass output on to their model.
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
            // Out of memory.
            reader.drain();
        }
        // Skips the destructors of globals: they take time and nothing depends on them.
        _exit(0);
    });
}
