#include "App/Model/ControlServer.h"

#include "App/Model/AppModel.h"
#include "App/Wording/Localized.h"
#include "Control/Protocol/SnapshotJSON.h"
#include "Core/Observation/ObservationLoop.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/UnixSocket.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <QLocalServer>
#include <QLocalSocket>
#include <sys/stat.h>
#include <unistd.h>

namespace vespra {

/// One connection. Held by the server alone: whoever else means it holds it weakly.
struct ControlServer::Client {
    explicit Client(QLocalSocket* connected)
        : socket{connected}
    {
    }

    QLocalSocket* socket; // the server's child
    /// It gets a line after each change, from the loop.
    bool watches = false;
    std::optional<ObservationLoop> watching;
    std::string lastSeen;
    /// A change was not sent, for the client had not read the last one yet.
    bool missedChange = false;
    /// It gets the end of the session, from the loop.
    bool waits = false;
    std::optional<ObservationLoop> waiting;
    /// When the session began that is there for this client, among others.
    std::optional<Instant> runs;
    bool isReadPosted = false;

    bool isIdle() const { return !watches && !waits && !runs; }
    bool isBacklogged() const { return socket->bytesToWrite() > longestBacklog; }

    void send(const JSON& reply)
    {
        const auto line = dumped(reply) + "\n";
        socket->write(line.data(), std::ssize(line));
        socket->flush();
    }
};

ControlServer::ControlServer(AppModel& model, MainLoop& mainLoop, std::string path)
    : model_{model}
    , mainLoop_{mainLoop}
    , path_{std::move(path)}
    , log_{Brand::appBundleID(), "control"}
    , service_{model}
{
}

ControlServer::~ControlServer()
{
    const auto ended = service_.ended();
    for (const auto& client : std::exchange(clients_, {})) {
        client->socket->disconnect();
        if (client->waits && ended)
            client->send(*ended);
    }
}

void ControlServer::start()
{
    std::error_code ignored;
    const auto folder = std::filesystem::path{path_}.parent_path();
    if (std::filesystem::create_directories(folder, ignored))
        chmod(folder.c_str(), 0700);
    server_ = std::make_unique<QLocalServer>();
    QLocalServer::removeServer(QString::fromStdString(path_));
    // Nobody else can connect in the moment before the file has its final mode.
    const auto before = umask(0177);
    const bool listens = server_->listen(QString::fromStdString(path_));
    umask(before);
    if (!listens)
        return log_.error(
            "Pilotage : écoute impossible sur " + path_ + " (" + server_->errorString().toStdString() + ")");
    QObject::connect(server_.get(), &QLocalServer::newConnection, [this] { accept(); });
}

void ControlServer::accept()
{
    while (auto* socket = server_->nextPendingConnection())
        take(socket);
}

void ControlServer::take(QLocalSocket* socket)
{
    const auto user = unixSocket::peerUser(static_cast<int>(socket->socketDescriptor()));
    if (user != geteuid()) {
        log_.error("Pilotage : connexion d'un autre utilisateur refusée");
        return socket->deleteLater();
    }
    if (clients_.size() >= mostClients) {
        const auto idle = std::ranges::find_if(clients_, [](const auto& client) { return client->isIdle(); });
        if (idle == clients_.end())
            return turnAway(socket);
        forget(**idle);
    }
    auto& client = *clients_.emplace_back(std::make_shared<Client>(socket));
    socket->setReadBufferSize(static_cast<qint64>(controlProtocol::longestLine) + 1);
    QObject::connect(socket, &QLocalSocket::readyRead, [this, &client] { read(client); });
    QObject::connect(socket, &QLocalSocket::bytesWritten, [this, &client] {
        if (client.watches && std::exchange(client.missedChange, false))
            watch(client);
        if (client.socket->canReadLine())
            readLater(client);
    });
    QObject::connect(socket, &QLocalSocket::disconnected, [this, &client] { forget(client); });
    // What came with the connection has been told of already.
    read(client);
}

void ControlServer::turnAway(QLocalSocket* socket)
{
    Client{socket}.send(
        ControlService::error(controlProtocol::refused, localized("Too many programs are connected.")));
    socket->deleteLater();
}

void ControlServer::forget(Client& client)
{
    const auto found = std::ranges::find_if(clients_, [&](const auto& each) { return each.get() == &client; });
    if (found == clients_.end())
        return;
    const auto gone = *found;
    clients_.erase(found);
    gone->watches = gone->waits = false;
    gone->socket->disconnect();
    gone->socket->deleteLater();
    // Later: this may run inside one of its loops.
    mainLoop_.post([gone] { });
    const bool wasLastRunner = gone->runs && gone->runs == runSessionStart_
        && std::ranges::none_of(clients_, [this](const auto& each) { return each->runs == runSessionStart_; });
    if (wasLastRunner && isRunSession())
        model_.coordinator().stop(end::StoppedByUser{});
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
    auto& socket = *client.socket;
    for (int handled = 0; socket.isOpen() && socket.canReadLine() && !client.isBacklogged(); ++handled) {
        if (handled == requestsPerTurn)
            return readLater(client);
        const auto line = socket.readLine().trimmed();
        handle(client, {line.constData(), static_cast<std::size_t>(line.size())});
    }
    if (!socket.canReadLine() && socket.bytesAvailable() > static_cast<qint64>(controlProtocol::longestLine)) {
        client.send(ControlService::error(controlProtocol::badRequest,
            "request: expected at most " + std::to_string(controlProtocol::longestLine) + " bytes in a line"));
        forget(client);
    }
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
        client.send(service_.reply(*request));
    }
}

/// While a line waits for the client no other is added: what it reads next is how things stand then.
void ControlServer::watch(Client& client)
{
    client.watching.emplace(mainLoop_, [this, &client] {
        if (!client.watches)
            return;
        auto status = service_.status();
        if (client.socket->bytesToWrite() > 0) {
            client.missedChange = true;
            return;
        }
        // Moments pass without anything having changed.
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

bool ControlServer::isRunSession() const
{
    const auto* session = model_.coordinator().state().activeSession();
    return session && session->startedAt == runSessionStart_;
}

void ControlServer::run(Client& client, const ControlRequest& request)
{
    // Whoever comes while such a session runs shares it.
    const auto reply = isRunSession() ? service_.reply({.verb = ControlVerb::describe}) : service_.reply(request);
    if (reply.contains("error"))
        return client.send(reply);
    // First: the client may have gone, which shows when something is sent, and the session is to go with it.
    runSessionStart_ = model_.coordinator().state().activeSession()->startedAt;
    client.runs = runSessionStart_;
    client.waits = true;
    client.send(reply);
    wait(client);
}

} // namespace vespra
