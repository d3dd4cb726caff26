#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vespra {

/// How long connecting and writing may take together: an application that hangs must not hold up the agent.
inline constexpr std::chrono::milliseconds sendingLimit{500};

/// Writes `line` and a line feed to the socket at `path`. False if nobody listens there, or not all could be written
/// in time. Never raises SIGPIPE if the program ignores it.
bool sendLine(std::string line, std::string_view path);

} // namespace vespra
