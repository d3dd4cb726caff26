#include "HelperProtocol/Process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vespra::process {

void openStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF)
            // Takes the lowest number that is free, which is this one, and is there for programs that this one starts.
            open("/dev/null", O_RDWR); // NOLINT(android-cloexec-open)
}

bool hasReader(int descriptor)
{
    pollfd output{.fd = descriptor, .events = 0, .revents = 0};
    return poll(&output, 1, 0) <= 0 || (output.revents & (POLLERR | POLLHUP)) == 0;
}

bool isOutputWritten()
{
    // A stream that has failed is emptied, and does not fail again for the same reason.
    static int reason = 0;
    if (std::fflush(stdout) != 0)
        reason = errno;
    errno = reason;
    return std::ferror(stdout) == 0;
}

bool isIgnored(int signal)
{
    struct sigaction action{};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void endBySignal(int signal)
{
    constexpr rlimit noCore{.rlim_cur = 0, .rlim_max = 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::signal(signal, SIG_DFL);
    sigset_t unblocked;
    sigemptyset(&unblocked);
    sigaddset(&unblocked, signal);
    sigprocmask(SIG_UNBLOCK, &unblocked, nullptr);
    kill(getpid(), signal);
    // Not every signal ends a process; this is how a shell writes it.
    constexpr int signalBase = 128;
    _exit(signalBase + signal);
}

} // namespace vespra::process
