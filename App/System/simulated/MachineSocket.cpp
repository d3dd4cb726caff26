#include "App/System/simulated/MachineSocket.h"

#include "App/System/simulated/MachineProtocol.h"
#include "HelperProtocol/Brand.h"
#include "Log/SystemLog.h"

#include <algorithm>

namespace vespra {

MachineSocket::MachineSocket(std::shared_ptr<SimulatedMachine> machine, MainLoop& mainLoop, const std::string& path)
    : machine_{std::move(machine)}
    , mainLoop_{mainLoop}
    , server_{[this](FileDescriptor connection) { accept(std::move(connection)); }}
{
    if (const auto listening = server_.listen(path); !listening)
        SystemLog{Brand::appBundleID(), "assertions"}.error(
            "Portable simulé : écoute impossible sur " + path + " (" + listening.error() + ")");
}

void MachineSocket::accept(FileDescriptor connection)
{
    auto& client = *clients_.emplace_back(
        std::make_shared<LocalSocket>(std::move(connection), machineProtocol::longestRequest + 1));
    client.onReceived = [this, &client] { answer(client); };
    client.onClosed = [this, &client] { forget(client); };
}

/// One request is read, one answer written, and the connection closed.
void MachineSocket::answer(LocalSocket& client)
{
    const auto line = client.takeLine();
    // Small enough for the socket's buffer; if the other side has gone, nobody waits for it.
    if (line)
        client.send(machineProtocol::answer(*machine_, *line) + "\n");
    if (line || client.unreadBytes() > machineProtocol::longestRequest)
        forget(client);
}

void MachineSocket::forget(LocalSocket& client)
{
    const auto found = std::ranges::find(clients_, &client, &std::shared_ptr<LocalSocket>::get);
    if (found == clients_.end())
        return;
    const auto gone = std::move(*found);
    clients_.erase(found);
    gone->onReceived = gone->onClosed = nullptr;
    // Destroyed in a later turn: this runs inside one of its callbacks.
    mainLoop_.post([gone] { });
}

} // namespace vespra
