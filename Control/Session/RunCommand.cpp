#include "Control/Session/Application.h"
#include "ControlProtocol/EndStatus.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/Process.h"
#include "HelperProtocol/UnixSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <thread>

namespace vespra::control {

namespace {

    std::string endMessage(const JSON& reply)
    {
        return reply.value("ended", JSON::object()).value("message", std::string{});
    }

    volatile std::sig_atomic_t runningCommand = 0;
    void passOn(int signal)
    {
        if (runningCommand > 0)
            kill(runningCommand, signal);
    }

    /// The handling of signals that this program was started with, which the command is to inherit.
    struct CallersSignals {
        /// Those that this program has changed.
        std::vector<int> defaults;
        sigset_t mask{};
    };

    /// A signal from the terminal reaches both processes and is left to the command; one sent to this process alone is
    /// passed on, and blocked until the command exists. Ignored signals stay ignored, as after nohup.
    CallersSignals takeSignals(bool ignoredBrokenPipes)
    {
        CallersSignals callers;
        sigset_t taken;
        sigemptyset(&taken);
        for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP})
            if (!process::isIgnored(signal)) {
                callers.defaults.push_back(signal);
                sigaddset(&taken, signal);
            }
        pthread_sigmask(SIG_BLOCK, &taken, &callers.mask);
        for (const int signal : callers.defaults)
            std::signal(signal, signal == SIGINT || signal == SIGQUIT ? SIG_IGN : passOn);
        if (!ignoredBrokenPipes)
            callers.defaults.push_back(SIGPIPE);
        return callers;
    }

    /// Becomes the command, or writes the system's error into `failures` and ends.
    [[noreturn]] void become(const std::vector<char*>& arguments, const CallersSignals& signals, int failures)
    {
        for (const int signal : signals.defaults)
            std::signal(signal, SIG_DFL);
        pthread_sigmask(SIG_SETMASK, &signals.mask, nullptr);
        // Gives a script without a first line to the shell.
        execvp(arguments.front(), arguments.data());
        const int error = errno;
        [[maybe_unused]] const auto written = write(failures, &error, sizeof error);
        _exit(runFailed);
    }

    int failedStart(const std::string& command, int error, int exitStatus)
    {
        return say(exitStatus, command + ": " + std::strerror(error));
    }

    /// The command's process, or the status to exit with after a complaint.
    std::expected<pid_t, int> started(const std::vector<std::string>& command, const CallersSignals& signals)
    {
        std::vector<char*> arguments;
        for (const auto& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0)
            return std::unexpected{failedStart(command.front(), errno, runFailed)};
        const FileDescriptor reading{ends[0]};
        FileDescriptor writing{ends[1]};
        for (const int end : ends)
            unixSocket::closeOnExec(end);
        const pid_t child = fork();
        if (child < 0)
            return std::unexpected{failedStart(command.front(), errno, runFailed)};
        if (child == 0)
            become(arguments, signals, writing.get());
        writing.reset();
        int error = 0;
        ssize_t count = 0;
        while ((count = read(reading.get(), &error, sizeof error)) < 0 && errno == EINTR) {
        }
        if (count <= 0)
            return child;
        waitpid(child, nullptr, 0);
        constexpr int notExecutable = 126, notFound = 127;
        return std::unexpected{failedStart(command.front(), error, error == ENOENT ? notFound : notExecutable)};
    }

    /// The command's status. Does not return if a signal ended it: then that ends this process too.
    int waited(pid_t child)
    {
        siginfo_t ended{};
        while (waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
        }
        // Once the child has been reaped, its number may belong to another process.
        runningCommand = 0;
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFSIGNALED(status))
            process::endBySignal(WTERMSIG(status));
        return WEXITSTATUS(status);
    }

    /// Tells the user, once, that the command goes on without being kept awake: the application says so or has gone.
    void tellOfTheEnd(ControlClient& client)
    {
        const auto reply = client.receive({});
        commandLine::complain(
            programName, reply ? endMessage(*reply) : Brand::appName() + " has gone; the command goes on.");
    }

    int run(const std::vector<std::string>& command, const StartOptions& options)
    {
        const bool ignoredBrokenPipes = process::isIgnored(SIGPIPE);
        int exitStatus = done;
        const auto client = std::make_shared<std::optional<ControlClient>>(
            connected({.verb = ControlVerb::run, .start = options}, exitStatus));
        if (!*client)
            return runFailed;
        const auto reply = (*client)->receive();
        if (failure(reply))
            return runFailed;
        closedLidStatus(*reply);
        const auto signals = takeSignals(ignoredBrokenPipes);
        const auto child = started(command, signals);
        if (!child)
            return child.error();
        runningCommand = *child;
        // The application lets go when this connection ends, however this process ends.
        std::thread{[client] { tellOfTheEnd(**client); }}.detach();
        pthread_sigmask(SIG_SETMASK, &signals.mask, nullptr);
        return waited(*child);
    }

    int wait()
    {
        int exitStatus = done;
        auto client = connectedForLong({.verb = ControlVerb::wait}, exitStatus);
        if (!client)
            return exitStatus;
        const auto reply = client->receive({});
        if (const auto failureStatus = failure(reply))
            return *failureStatus;
        const auto ended = reply->value("ended", JSON::object());
        if (ended.empty())
            return say(failed, "No session has run.");
        std::printf("%s\n", endMessage(*reply).c_str());
        return controlProtocol::exitStatusOfEnd(ended.value("reason", std::string{}));
    }

} // namespace

std::vector<std::string> takeCommand(int& argc, char** argv)
{
    using namespace std::string_view_literals;
    if (argc < 2 || argv[1] != "run"sv)
        return {};
    char** const end = argv + argc;
    // Skips the options of `run`, none of which takes a value.
    char** command = std::find_if(argv + 2, end, [](std::string_view argument) {
        return argument == "--" || argument == "-" || !argument.starts_with('-');
    });
    argc = static_cast<int>(command - argv);
    if (command != end && *command == "--"sv)
        ++command;
    return {command, end};
}

void addRunCommands(CLI::App& vespractl, int& exitStatus, const std::vector<std::string>& command)
{
    const auto options = std::make_shared<StartOptions>();
    auto* running = vespractl.add_subcommand("run", "Keeps awake while a command runs: run -- COMMAND...");
    running->add_flag_callback(
        "--display", [options] { options->keepsDisplayAwake = true; }, "Keep the display on too");
    running->add_flag_callback(
        "--closed-lid", [options] { options->closedLid = true; }, "Stay awake with the lid closed");
    // For the help only: `takeCommand` has removed these arguments before parsing.
    running->add_option_function<std::string>(
        "COMMAND", [](const std::string&) { }, "The command and its arguments, as they are");
    running->callback([=, &exitStatus] {
        if (command.empty())
            throw CLI::RequiredError{"COMMAND"};
        exitStatus = run(command, *options);
    });

    vespractl
        .add_subcommand("wait",
            "Waits until no session runs, and exits with 0 if it ended as planned, else by its reason: 10 stopped, "
            "11 battery low, 12 charger unplugged, 13 battery time limit, 14 closed-lid limit, 15 too hot, 16 safety "
            "limit, 17 system sleep, 18 application quit")
        ->callback([&exitStatus] { exitStatus = wait(); });
}

} // namespace vespra::control
