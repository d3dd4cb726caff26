#pragma once

#include "App/System/simulated/SimulatedMachine.h"
#include "HelperProtocol/FileDescriptor.h"

#include <memory>

class QSocketNotifier;

namespace vespra {

/// Lets vespractl steer a simulated laptop over a socket of the user's own. Main thread only.
class MachineSocket {
public:
    /// Listens at `path`, unless another program does already. Where that is impossible nobody can steer, and that is
    /// logged.
    MachineSocket(std::shared_ptr<SimulatedMachine> machine, std::string path);
    ~MachineSocket();
    MachineSocket(const MachineSocket&) = delete;
    MachineSocket& operator=(const MachineSocket&) = delete;

private:
    struct Connection;

    bool listen();
    void accept();
    void receive(Connection& connection);

    std::shared_ptr<SimulatedMachine> machine_;
    std::string path_;
    FileDescriptor listener_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<std::unique_ptr<Connection>> connections_;
};

} // namespace vespra
