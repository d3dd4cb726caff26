#include "App/Launch/TerminationSignals.h"

#include "HelperProtocol/Process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vespra {

namespace {

    constexpr std::array handled{SIGINT, SIGTERM, SIGHUP};
    static_assert(std::ranges::all_of(handled, [](int signal) { return signal < 128; }), "each is sent as a byte");
    /// Both ends of the pipe that carries a signal out of its handler; -1 while there is none.
    std::array<int, 2> signalPipe{-1, -1};

    void handle(int signal)
    {
        const int before = errno;
        const char byte = static_cast<char>(signal);
        // Nothing can be done in a handler if the pipe is full, and nothing has to: a byte is waiting already.
        [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
        errno = before;
    }

    void setHandler(void (*handler)(int))
    {
        struct sigaction action{};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        for (const int signal : handled)
            if (!process::isIgnored(signal))
                sigaction(signal, &action, nullptr);
    }

    /// Takes all pending signals and returns the first; 0 if there is none.
    int takePending(int descriptor)
    {
        char first = 0;
        if (read(descriptor, &first, 1) != 1)
            return 0;
        char others[16];
        while (read(descriptor, others, sizeof others) > 0) {
        }
        return first;
    }

} // namespace

TerminationSignals::TerminationSignals(std::function<void(int)> onSignal)
{
    if (pipe(signalPipe.data()) != 0)
        return;
    for (const int end : signalPipe) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [onSignal = std::move(onSignal)] {
        if (const int signal = takePending(signalPipe[0]); signal != 0)
            onSignal(signal);
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
