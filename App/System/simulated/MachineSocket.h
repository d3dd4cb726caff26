#pragma once

#include "App/System/LocalSocket.h"
#include "App/System/simulated/SimulatedMachine.h"
#include "Core/Scheduling/MainLoop.h"

#include <memory>

namespace vespra {

/// Lets vespractl steer a simulated laptop over a socket of the user's own. Main thread only.
class MachineSocket {
public:
    /// Listens at `path`, unless another program does already. Where that is impossible nobody can steer, and that is
    /// logged. `mainLoop` outlives it.
    MachineSocket(std::shared_ptr<SimulatedMachine> machine, MainLoop& mainLoop, const std::string& path);
    MachineSocket(const MachineSocket&) = delete;
    MachineSocket& operator=(const MachineSocket&) = delete;

private:
    void accept(FileDescriptor connection);
    void answer(LocalSocket& client);
    void forget(LocalSocket& client);

    std::shared_ptr<SimulatedMachine> machine_;
    MainLoop& mainLoop_;
    LocalSocketServer server_;
    std::vector<std::shared_ptr<LocalSocket>> clients_;
};

} // namespace vespra
