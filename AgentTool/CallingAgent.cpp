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

    ProcessIdentity identity(pid_t pid, const ProcessFacts& facts)
    {
        return {.pid = pid, .start = facts.start, .space = processSpace()};
    }

    /// Claude Code names itself in the environment, which also reaches other agents that are started from it.
    std::optional<ProcessIdentity> namedAgent(AgentKind agent)
    {
        const char* text = agent == AgentKind::claudeCode ? std::getenv("CLAUDE_PID") : nullptr;
        pid_t pid = 0;
        if (text)
            std::from_chars(text, text + std::strlen(text), pid);
        const auto facts = pid > 1 ? processFacts(pid) : std::nullopt;
        return facts ? std::optional{identity(pid, *facts)} : std::nullopt;
    }

} // namespace

std::optional<ProcessIdentity> callingAgent(AgentKind agent)
{
    if (const auto named = namedAgent(agent))
        return named;
    constexpr int furthest = 8;
    auto pid = getppid();
    for (int i = 0; i < furthest && pid > 1; ++i) {
        const auto facts = processFacts(pid);
        if (!facts)
            return {};
        if (!isShell(facts->name))
            return identity(pid, *facts);
        pid = facts->parent;
    }
    return {};
}

} // namespace vespra
