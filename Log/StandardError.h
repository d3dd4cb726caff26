#pragma once

#include <functional>
#include <string>

/// Lines for the user who watches the program in a terminal.
namespace vespra::standardError {

/// Writes `line` and a line feed. Any thread.
void write(const std::string& line);

/// Gives each line to `sink` instead, on the thread that writes it; empty puts standard error back. Before other
/// threads write.
void redirect(std::function<void(const std::string&)> sink);

} // namespace vespra::standardError
