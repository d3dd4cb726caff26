#pragma once

/// What every program does alike with its own process: the descriptors and signals that it starts with, and its output.
namespace vespra::process {

/// Opens each of the descriptors 0 to 2 that is closed on /dev/null, so that no file or socket takes its place and gets
/// what is printed. To be called before anything is opened.
void openStandardDescriptors();

/// False once nobody can read any more what is written to `descriptor`: the other end of the pipe or socket has gone.
bool hasReader(int descriptor);

/// Writes out what standard output still holds. False if that, or anything printed before, could not be written; then
/// `errno` is the reason, or 0 where it is no longer known.
bool isOutputWritten();

/// Whether whoever started this program had `signal` ignored, as `nohup` does.
bool isIgnored(int signal);

/// Ends the process as if it had never handled `signal`, so that a shell sees what happened. Leaves no core file.
[[noreturn]] void endBySignal(int signal);

} // namespace vespra::process
