#pragma once

/// The exit statuses of the application.
namespace vespra::ExitStatus {

inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int badArguments = 2;
inline constexpr int refused = 3;
// From 10 on: a guardrail has ended the session; each reason has its own status, the same as for `vespractl wait`.

/// Control-C. The process then ends by that signal, for which shells report this status.
inline constexpr int interrupted = 130;

} // namespace vespra::ExitStatus
