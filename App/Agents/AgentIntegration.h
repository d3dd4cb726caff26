#pragma once

// App/Agents: the application's side of the agents: how each is connected, the socket for their events, and the action
// that follows their session.

#include "Core/Agents/AgentKind.h"
#include "Core/Agents/HookSettingsFile.h"
#include "Core/Observation/Observed.h"
#include "HelperProtocol/Brand.h"
#include "Host/Host.h"
#include "Log/SystemLog.h"

#include <map>

namespace vespra {

/// Where the agents' settings files and our hook command are, and how each agent is connected. Main thread only.
class AgentIntegration {
public:
    using Connections = std::map<AgentKind, HookSettingsFile::Connection>;
    enum class CommandInstallation { inPlace, notFound, notCopied };

    /// Absolute paths. A preview touches no file.
    AgentIntegration(std::filesystem::path home, std::filesystem::path supportDirectory, bool isPreview = false);

    /// As of the last `refresh`; empty before the first.
    const Connections& connections() const { return connections_.get(); }
    void refresh();

    std::filesystem::path settingsFile(AgentKind kind) const;
    HookSettingsFile hookFile(AgentKind kind) const;

    /// Copies `tool`, which is absent if it is not installed with the application, to the place that the hooks name,
    /// unless the same stands there already. A hook that runs meanwhile never meets half a program. Failures are
    /// logged.
    CommandInstallation installCommand(
        const std::optional<std::filesystem::path>& tool = auxiliaryExecutable(Brand::agentCLIName())) const;

private:
    std::filesystem::path commandFile() const;

    std::filesystem::path home_;
    std::filesystem::path supportDirectory_;
    bool isPreview_;
    SystemLog logger_;
    Observed<Connections> connections_;
};

} // namespace vespra
