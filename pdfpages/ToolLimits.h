// What the external tools may take, and who may end them.
//
// A document may come from anybody, so a tool may be led to draw for hours or to fill
// the disk. The limits lie far beyond what an honest page needs: the largest page of our
// printers, at their finest resolution, is a picture of 250 MB that is drawn in seconds.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>

namespace velka {

/// For one run of a command.
struct ToolLimits {
  std::chrono::milliseconds time;  ///< by the clock, from its start to its end
  uint64_t fileBytes;              ///< of each file that it writes
  uint64_t memoryBytes;            ///< address space of each of its processes
};

/// A page: ten minutes, a picture of 1 GiB, 4 GiB of memory.
inline constexpr ToolLimits kDrawingLimits = {std::chrono::minutes(10), uint64_t{1} << 30U,
                                              uint64_t{4} << 30U};

/// The page count: a minute, a report of 1 MiB, the same memory.
inline constexpr ToolLimits kCountingLimits = {std::chrono::minutes(1), uint64_t{1} << 20U,
                                               uint64_t{4} << 30U};

/// The limits in use. Tests set narrower ones.
struct PageLimits {
  ToolLimits drawing = kDrawingLimits;
  ToolLimits counting = kCountingLimits;
};
inline PageLimits pageLimits;

/// What a command is watched for while it runs. It ends with all that it started when
/// its time is over or the flag, which a handler of SIGTERM sets, is not 0; once the flag
/// is set none starts.
struct ToolWatch {
  ToolLimits limits;
  const volatile std::sig_atomic_t& cancelled;
};

}  // namespace velka
