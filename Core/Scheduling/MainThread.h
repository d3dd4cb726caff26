#pragma once

#include <functional>
#include <source_location>
#include <string>

/// Checks that what belongs to the main thread stays there.
namespace vespra::mainThread {

/// Names the calling thread the main thread. Until then, and in a program that never calls it, the thread that
/// initialised the program's globals is the main thread.
void adopt();

bool isCurrent();

/// Reports a violation unless the main thread calls.
void check(std::source_location where = std::source_location::current());

/// Replaces what a violation does. The default writes the place to standard error and aborts: a process that goes on
/// with torn state might never let go of the machine, one that ends releases everything. Empty restores the default.
void onViolation(std::function<void(const std::string& place)> report);

} // namespace vespra::mainThread
