#pragma once

/// How a run in the terminal ends.
namespace vespra::ExitStatus {

inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int badArguments = 2;
inline constexpr int refused = 3;

} // namespace vespra::ExitStatus
