// The columns of one head pass: as many dots each as the head is high.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "GrowingBuffer.h"

namespace velka {

/// How far a short run is widened to the right.
inline constexpr int64_t kShortestRunSpan = 10;
/// With more blank columns than this between, two runs are shorter than one.
inline constexpr int64_t kMostBlankColumns = 190;

class PassColumns {
 public:
  /// The column of a head of 24 dots.
  static constexpr size_t kColumnBytes = 3;
  /// The column of the tallest head, of 72 dots.
  static constexpr size_t kMostColumnBytes = 9;

  /// Room for a page's width. False when memory runs out.
  [[nodiscard]] bool allocate(int64_t width, size_t bytesPerColumn = kColumnBytes) noexcept;
  /// Starts a pass.
  void clear() noexcept;
  /// Sets bit `bit` (0 the most significant of byte 0, which must be one of the column's)
  /// in each column where `row`, as wide as the page, holds 0. The row stays in use until the
  /// columns are packed.
  void addRow(const uint8_t* row, int bit) noexcept;
  /// The pass's columns, and as many blank ones behind as a widened run may need.
  [[nodiscard]] std::span<const uint8_t> pack() noexcept;
  [[nodiscard]] bool isBlank() const noexcept { return blank_; }
  [[nodiscard]] size_t bytesPerColumn() const noexcept { return bytesPerColumn_; }

 private:
  std::array<const uint8_t*, 8 * kMostColumnBytes> rows_{};  // of each bit; null: no dots
  MallocBytes columns_;
  size_t width_ = 0;
  size_t bytesPerColumn_ = kColumnBytes;
  bool blank_ = true;
};

}  // namespace velka
