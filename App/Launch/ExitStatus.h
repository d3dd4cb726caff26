#pragma once

/// How a run in the terminal ends.
namespace vespra::ExitStatus {

inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int badArguments = 2;
inline constexpr int refused = 3;
// From 10 on: a guardrail has ended the session, by its reason as in `vespractl wait`.

/// Control-C: the process ends by that signal. A shell shows this status for it.
inline constexpr int interrupted = 130;

} // namespace vespra::ExitStatus
