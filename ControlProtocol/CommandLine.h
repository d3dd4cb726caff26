#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the programs' command lines have in common: how help looks, and how what cannot be meant is refused.
namespace vespra::commandLine {

/// Writes "PROGRAM: MESSAGE" to standard error.
void complain(std::string_view program, std::string_view message);

/// Gives a program, whose name is set, its help and "--version". To be called first: subcommands that are added later
/// inherit it.
void prepare(CLI::App& program);

/// What an argument's value is checked with: it is one of `words`, of which there are at least two; it is a directory
/// that exists.
CLI::Validator oneOf(const std::vector<std::string>& words);
CLI::Validator directory();

/// Reads the arguments. Absent: done. Else the status to exit with: 0 after help or the version, 2 after a
/// complaint that names the argument, with the nearest one that there is.
std::optional<int> parse(CLI::App& program, int argc, char** argv);

} // namespace vespra::commandLine
