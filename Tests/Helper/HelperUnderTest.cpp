// The daemon with a lease and a state directory of the test's choice, which ends like a killed process right before the
// n-th thing that it does to the outside: HelperUnderTest STATE-DIRECTORY LEASE IDLE [N]
// $DELAY: how long each sync of a file and each call of a service takes, in microseconds
// $STOPS: it stops, for whoever continues it, right before it gives up its name

#include "Helper/linux/HelperProgram.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <signal.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

int stepsLeft = -1;

void step()
{
    if (stepsLeft-- == 0)
        raise(SIGKILL);
}

void slowStep()
{
    step();
    if (const char* delay = std::getenv("DELAY"))
        usleep(static_cast<useconds_t>(std::atoi(delay)));
}

} // namespace

// The linker sends the calls of these names here first.
extern "C" {

int __real_open(const char* path, int flags, mode_t mode);
int __real_mkdir(const char* path, mode_t mode);
ssize_t __real_write(int descriptor, const void* bytes, size_t count);
int __real_fsync(int descriptor);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);
int __real_close(int descriptor);
int __real_sd_bus_release_name(sd_bus*, const char* name);
int __real_sd_bus_call(sd_bus*, sd_bus_message*, uint64_t, sd_bus_error*, sd_bus_message**);

int __wrap_open(const char* path, int flags, ...)
{
    step();
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return __real_open(path, flags, mode);
}
int __wrap_mkdir(const char* path, mode_t mode) { return step(), __real_mkdir(path, mode); }
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count)
{
    return step(), __real_write(descriptor, bytes, count);
}
int __wrap_fsync(int descriptor) { return slowStep(), __real_fsync(descriptor); }
int __wrap_rename(const char* from, const char* to) { return step(), __real_rename(from, to); }
int __wrap_unlink(const char* path) { return step(), __real_unlink(path); }
int __wrap_close(int descriptor) { return step(), __real_close(descriptor); }
int __wrap_sd_bus_release_name(sd_bus* bus, const char* name)
{
    if (std::getenv("STOPS"))
        raise(SIGSTOP);
    return __real_sd_bus_release_name(bus, name);
}
int __wrap_sd_bus_call(
    sd_bus* bus, sd_bus_message* message, uint64_t limit, sd_bus_error* error, sd_bus_message** reply)
{
    return slowStep(), __real_sd_bus_call(bus, message, limit, error, reply);
}
}

int main(int argc, char** argv)
{
    if (argc < 4)
        return 2;
    if (argc > 4)
        stepsLeft = std::atoi(argv[4]);
    return vespra::runHelper({.stateDirectory = argv[1],
        .leaseTimeout = vespra::Seconds{std::atof(argv[2])},
        .idleTimeout = vespra::Seconds{std::atof(argv[3])}});
}
