#include "App/Agents/AgentProcesses.h"
#include "Host/ProcessFacts.h"

#include <cerrno>
#include <csignal>

namespace vespra {

namespace {

    class SystemAgentProcesses final : public AgentProcesses {
    public:
        AgentReading::Process state(const ProcessIdentity& process) override
        {
            using enum AgentReading::Process;
            if (process.space != 0 && process.space != processSpace())
                return unknown;
            const auto pid = static_cast<pid_t>(process.pid);
            if (const auto facts = processFacts(pid))
                return facts->hasEnded || facts->start != process.start ? gone : alive;
            // Of other users' processes some systems tell nothing but that they exist.
            return kill(pid, 0) == 0 || errno == EPERM ? alive : gone;
        }

        bool hasChildYoungerThan(const ProcessIdentity& process, Seconds age) override
        {
            return state(process) == AgentReading::Process::alive
                && vespra::hasChildYoungerThan(static_cast<pid_t>(process.pid), age);
        }
    };

} // namespace

AgentProcesses& systemAgentProcesses()
{
    static SystemAgentProcesses processes;
    return processes;
}

} // namespace vespra
