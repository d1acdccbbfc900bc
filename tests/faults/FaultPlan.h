// Which call is to fail, and how. Nothing here allocates or calls a function that the shim
// stands in front of.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace velka::testing {

/// The functions that can be failed.
enum class Function : uint8_t {
  Malloc,
  Calloc,
  Realloc,
  Open,
  OpenAt,
  Read,
  Write,
  FSync,
  FDataSync,
  Close,
  Link,
  LinkAt,
  Rename,
  Unlink,
  Fork,
  VFork,
  PosixSpawn,
  Pipe,
  Pipe2,
  Dup,
  Dup2,
  Dup3,
  FCntl,
  Stat,
  LStat,
  FStat,
  MkDir,
  FLock,
  FSetXAttr,
  PThreadCreate,
  MMap,
  Count
};

/// What becomes of a call.
enum class Verdict : uint8_t { Pass, Fail, Short };

/// Begins to count if VELKA_FAULT_PROGRAM names this very program; called before main().
void beginCounting() noexcept;

/// Counts a call and judges it.
Verdict judge(Function function, const void* caller, size_t size = 0) noexcept;

/// The error of a call that fails.
int plannedError() noexcept;

/// The function behind the shim's own; null where the C library has none.
void* behind(Function function) noexcept;

}  // namespace velka::testing
