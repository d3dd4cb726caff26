#include "Host/Host.h"

#import <Foundation/Foundation.h>

#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <mach-o/dyld.h>
#include <pthread.h>
#include <unistd.h>

namespace vespra {

std::optional<std::filesystem::path> executableDirectory()
{
    char given[PATH_MAX];
    char resolved[PATH_MAX];
    std::uint32_t size = sizeof given;
    if (_NSGetExecutablePath(given, &size) != 0 || !realpath(given, resolved))
        return {};
    return std::filesystem::path{resolved}.parent_path();
}

std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name)
{
    NSString* wanted = [[NSString alloc] initWithBytes:name.data() length:name.size() encoding:NSUTF8StringEncoding];
    NSURL* url = [[NSBundle mainBundle] URLForAuxiliaryExecutable:wanted];
    if (!url)
        return {};
    return std::filesystem::path{url.fileSystemRepresentation};
}

std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name)
{
    NSString* resources = [[NSBundle mainBundle] resourcePath];
    if (!resources)
        return {};
    const auto path = std::filesystem::path{resources.fileSystemRepresentation} / name;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? std::optional{path} : std::nullopt;
}

std::optional<uid_t> peerUser(int descriptor)
{
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(descriptor, &user, &group) != 0)
        return {};
    return user;
}

// fsync alone leaves the data in the drive's cache. Not every file system knows the full one.
bool syncToDisk(int descriptor) { return fcntl(descriptor, F_FULLFSYNC) == 0 || fsync(descriptor) == 0; }

void nameThisThread(const char* name) { pthread_setname_np(name); }

int inAutoreleasePool(const std::function<int()>& program)
{
    @autoreleasepool {
        return program();
    }
}

} // namespace vespra
