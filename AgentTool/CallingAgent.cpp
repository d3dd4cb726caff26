#include "AgentTool/CallingAgent.h"

#include "Host/ProcessFacts.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace vespra {

namespace {

    bool isShell(std::string_view name)
    {
        constexpr std::array<std::string_view, 5> shells{"sh", "dash", "bash", "zsh", "fish"};
        return std::ranges::find(shells, name) != shells.end();
    }

    void setProcess(AgentOrigin& origin, pid_t pid, const ProcessFacts& facts, bool isCertain)
    {
        origin.process = ProcessIdentity{.pid = pid, .start = facts.start, .space = processSpace()};
        origin.isProcessCertain = isCertain;
    }

    /// Claude Code names itself in the environment, which also reaches other agents that are started from it.
    pid_t namedProcess(AgentKind agent)
    {
        const char* text = agent == AgentKind::claudeCode ? std::getenv("CLAUDE_PID") : nullptr;
        pid_t pid = 0;
        if (text)
            std::from_chars(text, text + std::strlen(text), pid);
        return pid;
    }

} // namespace

void nameProcess(AgentEvent& event)
{
    if (const auto named = namedProcess(event.agent); named > 1)
        if (const auto facts = processFacts(named))
            return setProcess(event.origin, named, *facts, true);
    // An agent has run for longer when a hook of its runs; a program around the hook was started just for it.
    constexpr std::chrono::seconds youngestAgent{1};
    constexpr int furthest = 8;
    auto pid = getppid();
    for (int i = 0; i < furthest && pid > 1; ++i) {
        const auto facts = processFacts(pid);
        if (!facts)
            return;
        if (!isShell(facts->name))
            return setProcess(event.origin, pid, *facts, age(*facts) >= youngestAgent);
        pid = facts->parent;
    }
}

} // namespace vespra
