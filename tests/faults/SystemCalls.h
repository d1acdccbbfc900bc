// The system calls of a process and its threads, seen from outside.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velka::testing {

struct SystemCall {
  long number = 0;
  std::array<uint64_t, 6> arguments = {};
  int64_t result = 0;
  std::string text;  ///< what a path or the bytes of a write were
};

/// Runs `child` in a process of its own, which shall end there or become another program,
/// and returns what it asked of the system. Empty where the system lets nobody look.
[[nodiscard]] std::vector<SystemCall> systemCallsOf(const std::function<void()>& child);

/// What becomes of the file at `path`, in words: "open", "open to append", "look" (its
/// length, its owner, however often in turn), "write", "empty", "sync", "leave the cache",
/// "close", "rename", "remove", "other"; and "make PATH" of a folder on the way to it.
[[nodiscard]] std::vector<std::string> whatBecomesOf(const std::string& path,
                                                     const std::vector<SystemCall>& calls);

/// What each write to the file at `path` held.
[[nodiscard]] std::vector<std::string> writesTo(const std::string& path,
                                                const std::vector<SystemCall>& calls);

}  // namespace velka::testing
