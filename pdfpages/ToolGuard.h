// A process between the filter and a tool, which outlives neither.
#pragma once

#include <sys/types.h>

#include <csignal>

namespace velka {

/// Splits the process that was forked to become a tool in two. Returns in the one that
/// becomes it and leads a process group; the other waits for it, kills what is left of the
/// group then, and ends as the tool did. At `kEndTool`, which must be held back when this is
/// called, the guard kills the group at once. It does so, too, when `filter`, the process
/// that forked, is gone, even killed outright: the kernel tells a process of its parent's
/// end, but not those that this one has started. Where no process is to be had it ends with
/// status `kNoGuard`. Calls nothing that is not safe between fork() and exec().
void becomeGuardedTool(pid_t filter) noexcept;

inline constexpr int kEndTool = SIGTERM;

/// Whether the child has ended. Its number stays its own, and its group's, until waitpid()
/// takes the status.
bool hasEnded(pid_t child) noexcept;

/// As the shell says of a command that it cannot run.
inline constexpr int kNoGuard = 127;

}  // namespace velka
