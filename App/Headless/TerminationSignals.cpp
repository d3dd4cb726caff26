#include "App/Headless/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vespra {

namespace {

    constexpr std::array handled{SIGINT, SIGTERM, SIGHUP};
    /// Both ends of the pipe that carries a signal out of its handler; -1 while there is none.
    std::array<int, 2> signalPipe{-1, -1};

    void handle(int)
    {
        const int before = errno;
        // Nothing can be done in a handler if the pipe is full, and nothing has to: a byte is waiting already.
        [[maybe_unused]] const auto written = write(signalPipe[1], "s", 1);
        errno = before;
    }

    void setHandler(void (*handler)(int))
    {
        struct sigaction action{};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        for (const int signal : handled)
            sigaction(signal, &action, nullptr);
    }

    void drain(int descriptor)
    {
        char bytes[16];
        while (read(descriptor, bytes, sizeof bytes) > 0) {
        }
    }

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> onSignal)
{
    if (pipe(signalPipe.data()) != 0)
        return;
    for (const int end : signalPipe) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [onSignal = std::move(onSignal)] {
        drain(signalPipe[0]);
        onSignal();
    });
    setHandler(handle);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    notifier_.reset();
    for (int& end : signalPipe) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

} // namespace vespra
