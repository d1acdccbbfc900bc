// Where a page lands on the output bitmap: print offset, copying, quarter turns.
#pragma once

#include <cstdint>
#include <limits>
#include <span>

#include "DeviceRecords.h"

namespace velka {

/// The print offset in dots, right and down.
struct PageOffset {
  int32_t x = 0;
  int32_t y = 0;
};

/// Tenths of a millimetre in dots, rounded half up: tenths x 100 x dpi / 25400.
[[nodiscard]] int32_t tenthsToDots(int32_t tenths, int16_t dpi) noexcept;

/// The offset that the options ask for, on a page that is still to be rotated.
[[nodiscard]] PageOffset printOffset(const tagOEMCFG& options, const _DEVMODE& mode) noexcept;

/// The source geometry brought to output resolution, before the offset.
[[nodiscard]] GDIINFO scaledGeometry(const GDIINFO& source, double scaleX, double scaleY) noexcept;

/// Adds the offset to the output geometry and header, and hands the new physical
/// size back to the source where the offset changed it.
void growGeometry(_OEMPDEV& pdev, int16_t orientation, const PageOffset& offset) noexcept;

/// A bitmap and its row stride, 3 bytes a pixel.
struct BitmapView {
  std::span<uint8_t> bytes;
  uint32_t stride;
  /// Bytes from the start that were written to; those behind are white and not looked at.
  size_t stored = std::numeric_limits<size_t>::max();
  /// Pixels of a row; what a row holds behind them is padding.
  int64_t width = std::numeric_limits<int32_t>::max();
};

/// Copies a page into a white output bitmap of `rows` rows, moved by the offset.
/// Bytes that either bitmap does not hold stay as they are.
void placePage(const BitmapView& source, const BitmapView& output, int32_t rows,
               const PageOffset& offset) noexcept;

/// The bytes at the start of an output bitmap, whole rows of it, behind which placePage
/// writes nothing.
[[nodiscard]] size_t placedBytes(const BitmapView& source, const BitmapView& output,
                                 const PageOffset& offset) noexcept;

/// The quarter turns to make: a landscape page is already turned once.
[[nodiscard]] int quarterTurns(int32_t rotation, int16_t orientation) noexcept;

/// Turns the output geometry along with the picture.
void turnGeometry(GDIINFO& geometry, int turns) noexcept;

}  // namespace velka
