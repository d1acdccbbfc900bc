#include "Rotation.h"

#include <algorithm>
#include <cstring>

namespace velka {
namespace {

constexpr int64_t kPixelBytes = 3;
// A block of 32 x 32 pixels keeps its source rows and its target rows in the
// first-level cache while one side is walked across rows.
constexpr int64_t kBlock = 32;

void copyPixel(uint8_t* to, const uint8_t* from) {
  std::memcpy(to, from, kPixelBytes);
}

void padRows(uint8_t* dst, const BitmapShape& shape) {
  const int64_t used = shape.width * kPixelBytes;
  for (int64_t y = 0; y < shape.height; ++y) {
    std::memset(dst + y * shape.stride + used, 0xFF, static_cast<size_t>(shape.stride - used));
  }
}

void copyRows(const uint8_t* src, const BitmapShape& from, uint8_t* dst) {
  for (int64_t y = 0; y < from.height; ++y) {
    std::memcpy(dst + y * from.stride, src + y * from.stride,
                static_cast<size_t>(from.width * kPixelBytes));
  }
}

void turnHalf(const uint8_t* src, const BitmapShape& from, uint8_t* dst) {
  for (int64_t y = 0; y < from.height; ++y) {
    const uint8_t* in = src + y * from.stride;
    uint8_t* out = dst + (from.height - 1 - y) * from.stride + from.width * kPixelBytes;
    for (int64_t x = 0; x < from.width; ++x) {
      out -= kPixelBytes;
      copyPixel(out, in + x * kPixelBytes);
    }
  }
}

/// Source columns [x0, x1) of rows [y0, y1) become target rows.
void turnBlock(const uint8_t* src, const BitmapShape& from, uint8_t* dst, const BitmapShape& to,
               bool clockwise, int64_t x0, int64_t y0) {
  const int64_t x1 = std::min(x0 + kBlock, from.width);
  const int64_t y1 = std::min(y0 + kBlock, from.height);
  for (int64_t x = x0; x < x1; ++x) {
    uint8_t* row = dst + (clockwise ? x : from.width - 1 - x) * to.stride;
    for (int64_t y = y0; y < y1; ++y) {
      const int64_t column = clockwise ? from.height - 1 - y : y;
      copyPixel(row + column * kPixelBytes, src + y * from.stride + x * kPixelBytes);
    }
  }
}

void turnQuarter(const uint8_t* src, const BitmapShape& from, uint8_t* dst, const BitmapShape& to,
                 bool clockwise) {
  for (int64_t y = 0; y < from.height; y += kBlock) {
    for (int64_t x = 0; x < from.width; x += kBlock) {
      turnBlock(src, from, dst, to, clockwise, x, y);
    }
  }
}

}  // namespace

std::optional<BitmapShape> bitmapShape(int64_t width, int64_t height) {
  int64_t bits = 0;
  if (width <= 0 || height <= 0 || __builtin_mul_overflow(width, int64_t{24}, &bits) ||
      __builtin_add_overflow(bits, int64_t{31}, &bits)) {
    return std::nullopt;
  }
  BitmapShape shape{width, height, bits / 32 * 4, 0};
  if (__builtin_mul_overflow(shape.stride, height, &shape.size)) {
    return std::nullopt;
  }
  return shape;
}

void rotateBitmap(const uint8_t* src, const BitmapShape& from, uint8_t* dst, const BitmapShape& to,
                  int rotation) {
  padRows(dst, to);
  switch (rotation) {
    case 1:
      return turnQuarter(src, from, dst, to, false);
    case 2:
      return turnHalf(src, from, dst);
    case 3:
      return turnQuarter(src, from, dst, to, true);
    default:
      return copyRows(src, from, dst);
  }
}

}  // namespace velka
