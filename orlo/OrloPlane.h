// One ink of a page: a byte a pixel, and the box of what was stored in it.
#pragma once

#include <algorithm>
#include <cstdint>

namespace velka {

/// Rows of page-width bytes from `malloc`: 255 no ink, 0 full ink; after halftoning
/// only those two. The edges are inclusive, -1 while nothing was stored.
struct OrloPlane {
  unsigned char* data = nullptr;
  uint32_t size = 0;
  bool hasData = false;
  int32_t left = -1;
  int32_t top = -1;
  int32_t right = -1;
  int32_t bottom = -1;

  [[nodiscard]] bool isEmpty() const noexcept { return top < 0; }

  /// Widens the box by the columns first .. last of a row.
  void widen(int32_t first, int32_t last, int32_t row) noexcept {
    left = left < 0 ? first : std::min(left, first);
    top = top < 0 ? row : std::min(top, row);
    right = std::max(right, last);
    bottom = std::max(bottom, row);
  }
};

}  // namespace velka
