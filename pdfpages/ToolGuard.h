// A process between the filter and a tool, which outlives neither.
#pragma once

#include <sys/types.h>

namespace velka {

/// Splits the process that was forked to become a tool in two. Returns in the one that
/// becomes it; the other leads the process group of both, waits for the tool and ends as it
/// did. When `filter`, the process that forked, is gone, even killed outright, the guard
/// kills the whole group: the kernel tells a process of its parent's end, but not those that
/// this one has started. Where no process is to be had it ends with status `kNoGuard`. Calls
/// nothing that is not safe between fork() and exec().
void becomeGuardedTool(pid_t filter) noexcept;

/// As the shell says of a command that it cannot run.
inline constexpr int kNoGuard = 127;

}  // namespace velka
