// Running the external tools.
#pragma once

#include <string>

namespace velka {

/// Runs a command through the shell and waits for it. Returns what system() does:
/// the wait status, -1 where no shell could be started.
/// The command gets /dev/null for its standard descriptors, because ours are the
/// raster stream, the printer and the error stream that the job's filters share.
[[nodiscard]] int runShell(const char* command) noexcept;

/// The same, and returns what the command wrote to its standard output, cut after
/// `most` bytes; empty when it could not be run.
[[nodiscard]] std::string outputOfShell(const char* command, size_t most);

}  // namespace velka
