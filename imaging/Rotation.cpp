#include "Rotation.h"

#include <algorithm>
#include <cstring>

#include "CpuLevel.h"
#include "RotationTiles.h"

namespace velka {
namespace {

constexpr int64_t kPixelBytes = 3;
// A block of 64 x 64 pixels keeps its source rows and its target rows in the
// first-level cache while one side is walked across rows.
constexpr int64_t kBlock = 64;

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

/// A quarter turn: source row `row`, counted against or along the picture, becomes
/// target column `row`, source column `column` becomes a target row.
struct QuarterTurn {
  const uint8_t* src;
  int64_t srcStep;  ///< from one row to the next
  uint8_t* dst;
  int64_t dstStep;  ///< from one column's row to the next one's
  int64_t columns;
  int64_t rows;
};

/// The pixels of some source columns and rows.
struct Area {
  int64_t column;
  int64_t columnEnd;
  int64_t row;
  int64_t rowEnd;
};

void turnPixels(const QuarterTurn& turn, const Area& area) {
  for (int64_t column = area.column; column < area.columnEnd; ++column) {
    const uint8_t* from = turn.src + column * kPixelBytes;
    uint8_t* to = turn.dst + column * turn.dstStep;
    for (int64_t row = area.row; row < area.rowEnd; ++row) {
      copyPixel(to + row * kPixelBytes, from + row * turn.srcStep);
    }
  }
}

#ifdef VELKA_SIMD
void turnTiles(const QuarterTurn& turn, const Area& area) {
  // A tile reads a little past its columns, which must not be past the picture.
  const int64_t readable = std::min(area.columnEnd, turn.columns - kTileReach);
  const int64_t columns = std::max<int64_t>(readable - area.column, 0) / kTile * kTile;
  const int64_t rows = (area.rowEnd - area.row) / kTile * kTile;
  turnTilesSsse3({turn.src + area.row * turn.srcStep + area.column * kPixelBytes, turn.srcStep,
                  turn.dst + area.column * turn.dstStep + area.row * kPixelBytes, turn.dstStep,
                  columns, rows});
  turnPixels(turn, {area.column + columns, area.columnEnd, area.row, area.rowEnd});
  turnPixels(turn, {area.column, area.column + columns, area.row + rows, area.rowEnd});
}
#endif

void turnArea(const QuarterTurn& turn, const Area& area) {
#ifdef VELKA_SIMD
  if (cpuLevel() >= CpuLevel::Ssse3) return turnTiles(turn, area);
#endif
  turnPixels(turn, area);
}

void turnInBlocks(const QuarterTurn& turn) {
  for (int64_t row = 0; row < turn.rows; row += kBlock) {
    for (int64_t column = 0; column < turn.columns; column += kBlock) {
      turnArea(turn, {column, std::min(column + kBlock, turn.columns), row,
                      std::min(row + kBlock, turn.rows)});
    }
  }
}

void turnAnticlockwise(const uint8_t* src, const BitmapShape& from, uint8_t* dst,
                       const BitmapShape& to) {
  uint8_t* lastRow = dst + (to.height - 1) * to.stride;
  turnInBlocks({src, from.stride, lastRow, -to.stride, from.width, from.height});
}

void turnClockwise(const uint8_t* src, const BitmapShape& from, uint8_t* dst,
                   const BitmapShape& to) {
  const uint8_t* lastRow = src + (from.height - 1) * from.stride;
  turnInBlocks({lastRow, -from.stride, dst, to.stride, from.width, from.height});
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
      return turnAnticlockwise(src, from, dst, to);
    case 2:
      return turnHalf(src, from, dst);
    case 3:
      return turnClockwise(src, from, dst, to);
    default:
      return copyRows(src, from, dst);
  }
}

}  // namespace velka
