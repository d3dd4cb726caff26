#pragma once

#include <functional>

namespace vespra {

/// Runs `program`, all of a program's `main`, where the system's libraries can leave what they release later: macOS wants
/// such a place before the first call of its Objective-C. Returns what `program` returns.
int inAutoreleasePool(const std::function<int()>& program);

} // namespace vespra
