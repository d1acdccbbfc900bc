// The columns of one head pass: 24 dots each, three bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "GrowingBuffer.h"

namespace velka {

/// How far a short run is widened to the right.
inline constexpr int64_t kShortestRunSpan = 10;

class PassColumns {
 public:
  static constexpr size_t kColumnBytes = 3;

  /// Room for a page's width. False when memory runs out.
  [[nodiscard]] bool allocate(int64_t width) noexcept;
  /// Starts a pass.
  void clear() noexcept;
  /// Sets bit `bit` (0 the most significant of byte 0) in each column where `row`,
  /// as wide as the page, holds 0. The row stays in use until the columns are packed.
  void addRow(const uint8_t* row, int bit) noexcept;
  /// The pass's columns, and as many blank ones behind as a widened run may need.
  [[nodiscard]] std::span<const uint8_t> pack() noexcept;
  [[nodiscard]] bool isBlank() const noexcept { return blank_; }

 private:
  std::array<const uint8_t*, 8 * kColumnBytes> rows_{};  // of each bit; null: no dots
  MallocBytes columns_;
  size_t width_ = 0;
  bool blank_ = true;
};

}  // namespace velka
