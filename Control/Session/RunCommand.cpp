#include "Control/Session/Application.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

// Not every system declares it.
extern "C" char** environ; // NOLINT(readability-redundant-declaration)

namespace vespra::control {

namespace {

    std::string endMessage(const JSON& reply)
    {
        return reply.value("ended", JSON::object()).value("message", std::string{});
    }

    // Passed on to the command, which decides what they mean. A terminal sends its own to both.
    volatile std::sig_atomic_t runningCommand = 0;
    void passOn(int signal)
    {
        if (runningCommand > 0)
            kill(runningCommand, signal);
    }

    bool isIgnored(int signal)
    {
        struct sigaction action{};
        return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    }

    /// The signals that the command is to get as they are by default. One that was ignored stays so, as after nohup.
    sigset_t takeSignals()
    {
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        for (const int signal : {SIGINT, SIGQUIT})
            if (!isIgnored(signal)) {
                sigaddset(&defaults, signal);
                std::signal(signal, SIG_IGN);
            }
        for (const int signal : {SIGTERM, SIGHUP})
            if (!isIgnored(signal))
                std::signal(signal, passOn);
        return defaults;
    }

    /// Blocks what is passed on, for there is nobody to get it yet. Returns the mask from before.
    sigset_t blockSignals()
    {
        sigset_t passedOn, before;
        sigemptyset(&passedOn);
        sigaddset(&passedOn, SIGTERM);
        sigaddset(&passedOn, SIGHUP);
        pthread_sigmask(SIG_BLOCK, &passedOn, &before);
        return before;
    }

    /// Starts the command with the signals that it would have without this program. 0 on success, else the system's
    /// error.
    int spawned(pid_t& child, const std::vector<std::string>& command, const sigset_t& mask)
    {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const auto& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        const auto defaults = takeSignals();
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setsigmask(&attributes, &mask);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        const int error = posix_spawnp(&child, arguments.front(), nullptr, &attributes, arguments.data(), environ);
        posix_spawnattr_destroy(&attributes);
        return error;
    }

    /// As the shell passes it on: its status, or 128 and the signal that ended it.
    int waited(pid_t child)
    {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        constexpr int signalBase = 128;
        return WIFSIGNALED(status) ? signalBase + WTERMSIG(status) : WEXITSTATUS(status);
    }

    int execute(const std::vector<std::string>& command, const sigset_t& mask)
    {
        pid_t child = 0;
        if (const int error = spawned(child, command, mask); error != 0) {
            std::fprintf(stderr, "run: %s: %s\n", command.front().c_str(), std::strerror(error));
            constexpr int notFound = 127, notExecutable = 126;
            return error == ENOENT ? notFound : notExecutable;
        }
        runningCommand = child;
        pthread_sigmask(SIG_SETMASK, &mask, nullptr);
        const int status = waited(child);
        runningCommand = 0;
        return status;
    }

    int run(const std::vector<std::string>& command, const StartOptions& options)
    {
        int exitStatus = done;
        const auto client = std::make_shared<std::optional<ControlClient>>(
            connected({.verb = ControlVerb::run, .start = options}, exitStatus));
        if (!*client)
            return exitStatus;
        const auto started = (*client)->receive();
        if (const auto failed = failure(started))
            return *failed;
        closedLidStatus(*started);
        const auto mask = blockSignals();
        // The application lets go when this connection ends, however this process ends.
        std::thread{[client] {
            if (const auto reply = (*client)->receive({}))
                std::fprintf(stderr, "%s\n", endMessage(*reply).c_str());
        }}.detach();
        return execute(command, mask);
    }

    int wait()
    {
        int exitStatus = done;
        auto client = connected({.verb = ControlVerb::wait}, exitStatus);
        if (!client)
            return exitStatus;
        const auto reply = client->receive({});
        if (const auto failed = failure(reply))
            return *failed;
        const auto ended = reply->value("ended", JSON::object());
        if (ended.empty()) {
            std::fprintf(stderr, "No session has run.\n");
            return failed;
        }
        std::printf("%s\n", endMessage(*reply).c_str());
        return exitStatusOfEnd(ended.value("reason", std::string{}));
    }

} // namespace

void addRunCommands(CLI::App& vespractl, int& exitStatus)
{
    const auto command = std::make_shared<std::vector<std::string>>();
    const auto options = std::make_shared<StartOptions>();
    auto* running = vespractl.add_subcommand("run", "Keeps awake while a command runs: run -- COMMAND...");
    running->add_flag_callback(
        "--display", [options] { options->keepsDisplayAwake = true; }, "Keep the display on too");
    running->add_flag_callback(
        "--closed-lid", [options] { options->closedLid = true; }, "Stay awake with the lid closed");
    running->add_option("COMMAND", *command, "The command and its arguments, after --")->required();
    running->callback([=, &exitStatus] { exitStatus = run(*command, *options); });

    vespractl
        .add_subcommand("wait",
            "Waits until no session runs, and exits with 0 if it ended as planned, else by its reason: 10 stopped, "
            "11 battery low, 12 charger unplugged, 13 battery time limit, 14 closed-lid limit, 15 too hot, 16 safety "
            "limit, 17 system sleep, 18 application quit")
        ->callback([&exitStatus] { exitStatus = wait(); });
}

} // namespace vespra::control
