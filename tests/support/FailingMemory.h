// Memory that runs out where a test wants it.
//
// A test that links velka_failing_memory has its own malloc, calloc, realloc and
// operator new in front of the library's. They count and fail for the thread that holds
// one of these objects, and for nobody else.
#pragma once

#include <cstddef>

namespace velka::testing {

/// Counts this thread's allocations while it lives and fails some of them.
class FailingMemory {
 public:
  static constexpr size_t kNone = static_cast<size_t>(-1);
  static constexpr size_t kAll = static_cast<size_t>(-1);

  /// Fails `count` allocations behind the first `passed`; none by default.
  explicit FailingMemory(size_t passed = kNone, size_t count = 1);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Allocations asked for so far.
  [[nodiscard]] size_t asked() const;
  /// Objects made with new so far, less those deleted.
  [[nodiscard]] long objects() const;
};

}  // namespace velka::testing
