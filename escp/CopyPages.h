// Repeating kept pages as copies, as long as nobody cancels the job.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

namespace velka {

/// The flag that a cancelled job sets, null where there is none.
using CancelFlag = const volatile std::sig_atomic_t*;

[[nodiscard]] inline bool isCanceled(CancelFlag flag) noexcept {
  return flag != nullptr && *flag != 0;
}

/// Where each of the pages ends whose commands are kept one behind the other.
class CopyPages {
 public:
  CopyPages() = default;
  ~CopyPages() { std::free(ends_); }
  CopyPages(const CopyPages&) = delete;
  CopyPages& operator=(const CopyPages&) = delete;

  /// A page ends where `length` bytes are kept. Without memory for that it counts as a
  /// part of the next one, which a cancelled job sends to its end.
  void endAt(unsigned int length) noexcept;

  /// What each round starts with; nothing by default.
  void startWith(const std::array<uint8_t, 3>& command) noexcept { start_ = command; }

  /// Writes the pages in `kept` to the printer `times` times, each page to its end, until
  /// the flag is set. What no end was told of counts as one page.
  void repeat(std::span<const uint8_t> kept, int times, CancelFlag canceled) const noexcept;

 private:
  [[nodiscard]] bool writeOnce(std::span<const uint8_t> kept, CancelFlag canceled) const noexcept;
  [[nodiscard]] std::span<const unsigned int> ends() const noexcept {
    return {reinterpret_cast<const unsigned int*>(ends_), size_ / sizeof(unsigned int)};
  }

  unsigned char* ends_ = nullptr;  // of unsigned ints
  unsigned int size_ = 0;
  std::optional<std::array<uint8_t, 3>> start_;
};

}  // namespace velka
