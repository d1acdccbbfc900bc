// Which call is to fail, and how. Nothing here allocates or calls a function that the shim
// stands in front of.
#pragma once

#include <array>
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
  New,
  NewArray,  // counted as New
  FOpen,
  FDOpen,
  FWrite,
  Count
};

/// As the linker knows them: operator new by its mangled name.
inline constexpr std::array<const char*, static_cast<size_t>(Function::Count)> kFunctionNames = {
    "malloc",      "calloc", "realloc", "open",   "openat",    "read",           "write", "fsync",
    "fdatasync",   "close",  "link",    "linkat", "rename",    "unlink",         "fork",  "vfork",
    "posix_spawn", "pipe",   "pipe2",   "dup",    "dup2",      "dup3",           "fcntl", "stat",
    "lstat",       "fstat",  "mkdir",   "flock",  "fsetxattr", "pthread_create", "mmap",  "_Znwm",
    "_Znam",       "fopen",  "fdopen",  "fwrite"};

/// What becomes of a call.
enum class Verdict : uint8_t { Pass, Fail, Short };

/// Begins to count if VELKA_FAULT_PROGRAM names this very program; called before main().
void beginCounting() noexcept;

/// Ends it, for a program that is asked for by name and not by this header: what it does
/// from here on is measurement.
extern "C" void velkaFaultsEnd() noexcept;

/// Counts a call and judges it.
Verdict judge(Function function, const void* caller, size_t size = 0) noexcept;

/// The error of a call that fails.
int plannedError() noexcept;

/// The function behind the shim's own; null where the C library has none.
void* behind(Function function) noexcept;

}  // namespace velka::testing
