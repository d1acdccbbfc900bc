// Running the external tools.
#pragma once

#include <string>

#include "ToolLimits.h"

namespace velka {

/// The exit status of a command's shell that did not get its descriptors and ran nothing.
inline constexpr int kNoDescriptors = 125;

/// How a command ended.
struct ToolEnd {
  /// As system() has it: the wait status, -1 where the command was not started.
  int status = -1;
  bool late = false;  ///< it was ended because its time was over
};

/// Runs a command through the shell, in a process group of its own, and waits for it.
/// Its standard descriptors are /dev/null, because ours are the raster stream, the
/// printer and the error stream that the job's filters share; where that cannot be had,
/// nothing runs. With `output` its standard output goes to that descriptor.
/// The command must be made of plain names (PlainNames.h), nothing else keeps the shell
/// from acting on it.
[[nodiscard]] ToolEnd runShell(const char* command, const ToolWatch& watch,
                               int output = -1) noexcept;

/// The same; `text` becomes what the command wrote to its standard output, cut after
/// `most` bytes, and empty where it was not started.
[[nodiscard]] ToolEnd readShell(const char* command, const ToolWatch& watch, size_t most,
                                std::string& text);

}  // namespace velka
