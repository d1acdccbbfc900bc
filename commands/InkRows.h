// Which rows of a halftoned plane print, looked up once a page.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace velka {

/// A plane of one byte a pixel, `rows` rows of `width` bytes; may be null. Rows from
/// `filledRows` on hold anything and have no dots.
struct DotPlane {
  const uint8_t* data;
  int64_t width;
  int64_t rows;
  int64_t filledRows;

  [[nodiscard]] const uint8_t* row(int64_t y) const noexcept { return data + y * width; }
};

class InkRows {
 public:
  /// Looks through the plane. False when memory runs out.
  [[nodiscard]] bool scan(const DotPlane& plane) noexcept;

  /// Whether a row lies inside the plane and is not all 255.
  [[nodiscard]] bool isInked(int64_t row) const noexcept {
    return row >= 0 && row < rows_ && next_[static_cast<size_t>(row)] == row;
  }
  /// The first inked row at or below `row`.
  [[nodiscard]] std::optional<int64_t> firstFrom(int64_t row) const noexcept;

 private:
  std::unique_ptr<int32_t[]> next_;  // the first inked row from each row on, or rows_
  int64_t rows_ = 0;
};

}  // namespace velka
