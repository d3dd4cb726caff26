#include "App/Agents/AgentSocketServer.h"

#include "App/Agents/AgentSocketReceiver.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/UnixSocket.h"
#include "Host/Host.h"

#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <expected>
#include <filesystem>
#include <system_error>

namespace vespra {

namespace {

    constexpr mode_t ownerOnlyDirectory = 0700;
    constexpr mode_t ownerOnlyFile = 0600;

    /// Existing directories keep their mode. A failure shows when the socket is bound.
    void makePrivateDirectories(const std::filesystem::path& directory)
    {
        std::filesystem::path reached;
        for (const auto& component : directory) {
            reached /= component;
            // Again, since the umask may have removed permissions.
            if (mkdir(reached.c_str(), ownerOnlyDirectory) == 0)
                chmod(reached.c_str(), ownerOnlyDirectory);
        }
    }

    /// Starts a thread on which no signal arrives, so that the main thread's handlers keep them.
    /// Fails with the system's error number.
    template <class Body> std::expected<std::thread, int> threadWithoutSignals(Body body)
    {
        sigset_t all, before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        std::expected<std::thread, int> started;
        try {
            started = std::thread{std::move(body)};
        } catch (const std::system_error& error) {
            started = std::unexpected{error.code().value()};
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return started;
    }

} // namespace

AgentSocketServer::AgentSocketServer(std::string path, MainLoop& loop, const WallClock& clock, OnEvent onEvent)
    : path_{std::move(path)}
    , loop_{loop}
    , clock_{clock}
    , onEvent_{std::make_shared<const OnEvent>(std::move(onEvent))}
    , logger_{Brand::appBundleID(), "agents"}
{
}

AgentSocketServer::~AgentSocketServer()
{
    if (thread_.joinable()) {
        // Not by closing: a program started at the wrong moment may hold a copy of the writing end.
        [[maybe_unused]] const auto written = write(stopWriter_.get(), "", 1);
        thread_.join();
    }
    // Before the listener closes: until then no other file can have got the same inode.
    removeOwnFile();
}

void AgentSocketServer::start()
{
    if (isListening())
        return;
    makePrivateDirectories(std::filesystem::path{path_}.parent_path());
    unlink(path_.c_str());
    auto socket = unixSocket::make();
    int stop[2];
    if (!socket || pipe(stop) != 0)
        return logger_.error("Socket agents : création impossible");
    stopReader_ = FileDescriptor{stop[0]};
    stopWriter_ = FileDescriptor{stop[1]};
    unixSocket::closeOnExec(stopReader_.get());
    unixSocket::closeOnExec(stopWriter_.get());
    listen(std::move(socket));
}

void AgentSocketServer::listen(FileDescriptor socket)
{
    const auto address = unixSocket::address(path_);
    if (!address)
        return logger_.error("Socket agents : chemin trop long");
    if (!bindAndListen(socket.get(), *address))
        return giveUpListening(errno);
    listener_ = std::move(socket);
    auto thread = threadWithoutSignals([this] { runThread(); });
    if (!thread)
        return giveUpListening(thread.error());
    thread_ = *std::move(thread);
}

void AgentSocketServer::giveUpListening(int reason)
{
    removeOwnFile();
    listener_.reset();
    logger_.error("Socket agents : écoute impossible (" + std::to_string(reason) + ")");
}

bool AgentSocketServer::bindAndListen(int socket, const sockaddr_un& address)
{
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return false;
    ownFile_ = identity(path_);
    // Nobody can connect before the socket listens, so other users meet the file only with its final permissions,
    // whatever the umask; changing the umask would affect files that other threads create.
    return chmod(path_.c_str(), ownerOnlyFile) == 0 && ::listen(socket, backlog) == 0
        && unixSocket::setBlocking(socket, false);
}

void AgentSocketServer::runThread()
{
    nameThisThread("agents.socket");
    const auto deliver = [this, receiver = std::weak_ptr{onEvent_}](AgentEvent event) {
        event.date = clock_.now();
        loop_.post([receiver, event = std::move(event)] {
            if (const auto onEvent = receiver.lock())
                (*onEvent)(event);
        });
    };
    AgentSocketReceiver{listener_.get(), stopReader_.get(), deliver}.run();
}

std::optional<AgentSocketServer::FileIdentity> AgentSocketServer::identity(const std::string& path)
{
    struct stat file{};
    if (lstat(path.c_str(), &file) != 0)
        return {};
    return FileIdentity{file.st_dev, file.st_ino};
}

void AgentSocketServer::removeOwnFile()
{
    if (ownFile_ && identity(path_) == ownFile_)
        unlink(path_.c_str());
    ownFile_.reset();
}

} // namespace vespra
