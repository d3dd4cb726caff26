#pragma once

#include "Core/Agents/AgentCourse.h"

namespace vespra {

/// Tells of the agents' processes. Main thread only.
class AgentProcesses {
public:
    virtual ~AgentProcesses() = default;

    /// Gone also if another process has the number now. A process of another user counts as alive; unknown is one whose
    /// number was given by another container.
    virtual AgentReading::Process state(const ProcessIdentity& process) = 0;
    /// Whether it runs a program that it started less than `age` ago.
    virtual bool hasChildYoungerThan(const ProcessIdentity& process, Seconds age) = 0;
};

/// This computer's processes.
AgentProcesses& systemAgentProcesses();

} // namespace vespra
