// Quarter turns of 24-bit bitmaps.
#pragma once

#include <cstdint>
#include <optional>

namespace velka {

/// The shape of a 24-bit bitmap whose rows are padded to multiples of 4 bytes.
struct BitmapShape {
  int64_t width;   ///< pixels
  int64_t height;  ///< rows
  int64_t stride;  ///< bytes a row
  int64_t size;    ///< bytes
};

/// The shape for a width and a height; nothing unless both are positive and the
/// size fits 63 bits.
std::optional<BitmapShape> bitmapShape(int64_t width, int64_t height);

/// Writes all of `dst`, its padding included (0xFF). `to` is the shape after the
/// turn; the buffers must not overlap.
void rotateBitmap(const uint8_t* src, const BitmapShape& from, uint8_t* dst, const BitmapShape& to,
                  int rotation);

}  // namespace velka
