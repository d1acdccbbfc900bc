// One ink of a page: a byte a pixel, and the box of what was stored in it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velka {

/// Rows of page-width bytes from `malloc`: 255 no ink, 0 full ink; after halftoning
/// only those two. The edges are inclusive, -1 while nothing was stored. Bytes behind
/// the filled ones hold anything and count as 255: nothing was stored there, and
/// halftoning, as this model does it, puts no dot below the last ink.
struct OrloPlane {
  unsigned char* data = nullptr;
  uint32_t size = 0;
  uint32_t filled = 0;
  bool hasData = false;
  int32_t left = -1;
  int32_t top = -1;
  int32_t right = -1;
  int32_t bottom = -1;

  [[nodiscard]] bool isEmpty() const noexcept { return top < 0; }

  /// Fills the plane up to `end` bytes, as far as it is not yet.
  void fillTo(uint64_t end) noexcept {
    end = std::min<uint64_t>(end, size);
    if (end <= filled) return;
    std::memset(data + filled, 255, end - filled);
    filled = static_cast<uint32_t>(end);
  }
  /// The rows of `width` bytes that hold anything.
  [[nodiscard]] int64_t filledRows(int64_t width) const noexcept {
    return width <= 0 ? 0 : (filled + width - 1) / width;
  }

  /// Widens the box by the columns first .. last of a row.
  void widen(int32_t first, int32_t last, int32_t row) noexcept {
    left = left < 0 ? first : std::min(left, first);
    top = top < 0 ? row : std::min(top, row);
    right = std::max(right, last);
    bottom = std::max(bottom, row);
  }
};

}  // namespace velka
