#include "App/ControlSocket/ControlServer.h"

#include "App/Model/AppModel.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "ControlProtocol/SnapshotJSON.h"
#include "Core/Observation/ObservationLoop.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/Process.h"
#include "HelperProtocol/UnixSocket.h"
#include "Host/Host.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace vespra {

/// One connection. Only the server owns it; everything else refers to it weakly.
struct ControlServer::Client {
    explicit Client(FileDescriptor connection)
        : socket{std::move(connection), controlProtocol::longestLine + 1}
    {
    }

    LocalSocket socket;
    /// The client gets a line after each change, sent by the loop.
    bool watches = false;
    std::optional<ObservationLoop> watching;
    std::string lastSeen;
    /// A change was not sent because the client had not read the previous line yet.
    bool missedChange = false;
    /// The client is told of the session's end, by the loop.
    bool waits = false;
    std::optional<ObservationLoop> waiting;
    /// The command that the client runs, until it ends or is dropped.
    std::optional<RunningCommands::Command> command;
    bool isReadPosted = false;
    /// A reply held back until the state of closed-lid mode is known, which the loop finds out; no request is read
    /// until then.
    struct Owed {
        ControlRequest request;
        JSON reply;
    };
    std::optional<Owed> owed;
    std::vector<JSON> sentAfterOwed;
    std::optional<ObservationLoop> settling;
    std::unique_ptr<ScheduledTask> settlingLimit;

    bool isIdle() const { return !watches && !waits && !command && !owed; }
    bool isBacklogged() const { return socket.unsentBytes() > longestBacklog; }

    void send(const JSON& reply)
    {
        if (owed)
            sentAfterOwed.push_back(reply);
        else
            socket.send(dumped(reply) + "\n");
    }
};

ControlServer::ControlServer(AppModel& model, MainLoop& mainLoop, TaskScheduling& tasks, std::string path)
    : model_{model}
    , mainLoop_{mainLoop}
    , tasks_{tasks}
    , path_{std::move(path)}
    , log_{Brand::appBundleID(), "control"}
    , service_{model}
    , server_{[this](FileDescriptor connection) { accept(std::move(connection)); }}
{
}

ControlServer::~ControlServer()
{
    const auto clients = std::exchange(clients_, {});
    for (const auto& client : clients)
        release(*client);
    const auto ended = service_.ended();
    for (const auto& client : clients) {
        if (client->owed)
            client->socket.send(dumped(client->owed->reply) + "\n");
        client->owed.reset();
        if (client->waits && ended)
            client->send(*ended);
    }
}

void ControlServer::start()
{
    if (const auto listening = server_.listen(path_); !listening)
        log_.error("Pilotage : écoute impossible sur " + path_ + " (" + listening.error() + ")");
}

void ControlServer::accept(FileDescriptor connection)
{
    if (peerUser(connection.get()) != geteuid())
        return log_.error("Pilotage : connexion d'un autre utilisateur refusée");
    auto client = std::make_shared<Client>(std::move(connection));
    if (clients_.size() >= mostClients) {
        const auto idle = std::ranges::find_if(clients_, [](const auto& each) { return each->isIdle(); });
        if (idle == clients_.end())
            return client->send(
                ControlService::error(controlProtocol::refused, localized("Too many programs are connected.")));
        forget(**idle);
    }
    client->socket.onReceived = [this, &client = *client] { read(client); };
    client->socket.onSent = [this, &client = *client] {
        if (client.watches && std::exchange(client.missedChange, false))
            watch(client);
        readLater(client);
    };
    client->socket.onClosed = [this, &client = *client] { forget(client); };
    clients_.push_back(std::move(client));
}

void ControlServer::forget(Client& client)
{
    const auto found = std::ranges::find_if(clients_, [&](const auto& each) { return each.get() == &client; });
    if (found == clients_.end())
        return;
    const auto gone = std::move(*found);
    clients_.erase(found);
    gone->watches = gone->waits = false;
    gone->owed.reset();
    gone->settlingLimit.reset();
    gone->socket.onReceived = gone->socket.onSent = gone->socket.onClosed = nullptr;
    // Destroyed in a later turn: this may run inside one of the client's callbacks.
    mainLoop_.post([gone] { });
    release(*gone);
}

void ControlServer::release(Client& client)
{
    if (const auto command = std::exchange(client.command, {}))
        model_.commands().end(*command);
}

void ControlServer::readLater(Client& client)
{
    if (std::exchange(client.isReadPosted, true))
        return;
    const auto found = std::ranges::find_if(clients_, [&](const auto& each) { return each.get() == &client; });
    if (found == clients_.end())
        return;
    mainLoop_.post([this, weak = std::weak_ptr{*found}] {
        if (const auto there = weak.lock()) {
            there->isReadPosted = false;
            read(*there);
        }
    });
}

void ControlServer::read(Client& client)
{
    for (int handled = 0; client.socket.hasLine() && !client.isBacklogged() && !client.owed; ++handled) {
        if (handled == requestsPerTurn)
            return readLater(client);
        if (!process::hasReader(client.socket.descriptor()))
            return forget(client);
        const auto line = *client.socket.takeLine();
        if (line.size() > controlProtocol::longestLine)
            return refuseLength(client);
        handle(client, line);
    }
    if (!client.socket.hasLine() && client.socket.unreadBytes() > controlProtocol::longestLine)
        refuseLength(client);
}

/// Closes the connection: skipping such a line to find the next request is not worth the code.
void ControlServer::refuseLength(Client& client)
{
    client.send(ControlService::error(controlProtocol::badRequest,
        "request: expected at most " + std::to_string(controlProtocol::longestLine) + " bytes in a line"));
    forget(client);
}

void ControlServer::handle(Client& client, std::string_view line)
{
    const auto request = controlProtocol::request(line);
    if (!request)
        return client.send(ControlService::error(controlProtocol::badRequest, request.error()));
    switch (request->verb) {
    case ControlVerb::watch:
        client.watches = true;
        client.lastSeen.clear();
        return watch(client);
    case ControlVerb::wait:
        client.waits = true;
        return wait(client);
    case ControlVerb::run:
        return run(client, *request);
    default:
        answer(client, *request, service_.reply(*request));
    }
}

void ControlServer::answer(Client& client, const ControlRequest& request, const JSON& reply)
{
    if (reply.contains("error") || !service_.tellsClosedLid(request))
        return client.send(reply);
    client.owed = {request, reply};
    client.settling.emplace(mainLoop_, [this, &client] {
        if (client.owed && !service_.isClosedLidSettling(client.owed->request))
            giveOwed(client);
    });
    // Setting up and removing may wait for a person.
    const bool waitsForPerson
        = request.verb == ControlVerb::setUpClosedLid || request.verb == ControlVerb::removeClosedLid;
    if (client.owed && !waitsForPerson)
        client.settlingLimit = tasks_.schedule(closedLidLimit, [this, &client] { giveOwed(client); });
}

void ControlServer::giveOwed(Client& client)
{
    const auto owed = *std::exchange(client.owed, {});
    client.settlingLimit.reset();
    client.send(service_.withClosedLid(owed.request, owed.reply));
    for (const auto& later : std::exchange(client.sentAfterOwed, {}))
        client.send(later);
    readLater(client);
}

/// While a line is still unsent no other is queued: a slow client skips states and reads the latest.
void ControlServer::watch(Client& client)
{
    client.watching.emplace(mainLoop_, [this, &client] {
        if (!client.watches)
            return;
        auto status = service_.status();
        if (client.socket.unsentBytes() > 0) {
            client.missedChange = true;
            return;
        }
        // The passing of time alone is no change.
        auto compared = status;
        compared["status"].erase("remaining");
        compared["status"].erase("elapsed");
        if (auto text = dumped(compared); text != client.lastSeen) {
            client.lastSeen = std::move(text);
            client.send(status);
        }
    });
}

void ControlServer::wait(Client& client)
{
    client.waiting.emplace(mainLoop_, [this, &client] {
        if (!client.waits)
            return;
        if (const auto ended = service_.ended()) {
            client.waits = false;
            client.send(*ended);
        }
    });
}

void ControlServer::run(Client& client, const ControlRequest& request)
{
    const RunningCommands::Wishes wishes{
        .keepsDisplayAwake = request.start.keepsDisplayAwake, .closedLid = request.start.closedLid};
    const auto begun = model_.commands().begin(wishes, [this, &client] {
        client.command.reset();
        if (const auto ended = service_.ended())
            client.send(*ended);
    });
    if (!begun)
        return client.send(ControlService::error(controlProtocol::refused, message(begun.error())));
    // Ends the command that this connection began before, if any.
    release(client);
    // Before answering: if the client has gone, sending notices that and ends the command with it.
    client.command = *begun;
    answer(client, request, service_.done());
}

} // namespace vespra
