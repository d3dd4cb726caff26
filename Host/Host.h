#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <sys/types.h>

/// Small things about a process and its files for which every system has calls of its own, all in one file per system.
/// Any thread.
namespace vespra {

/// The folder of this program, links resolved; absent if the system does not tell.
std::optional<std::filesystem::path> executableDirectory();

/// A program that is installed with this one: on macOS in the bundle, elsewhere beside this program's executable or in
/// its libexec folder. Absent if it is not there.
std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name);

/// A file that ships with the program, such as "sounds/heat-alarm.wav": on macOS in the bundle's resources, elsewhere
/// below share/Vespra beside the folder of this program, in the build as where it is installed. Absent if it is not
/// there.
std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name);

/// Whose program is at the other end of a connection; absent if the system does not tell.
std::optional<uid_t> peerUser(int descriptor);

/// Returns once the file's content is on the disk. False with errno on an error.
bool syncToDisk(int descriptor);

/// Names the calling thread for debuggers and process lists; at most 15 bytes.
void nameThisThread(const char* name);

/// Runs `program`, the body of `main`, inside an autorelease pool, which macOS needs before the first call of
/// Objective-C. Elsewhere it is just called. Returns what `program` returns.
int inAutoreleasePool(const std::function<int()>& program);

} // namespace vespra
