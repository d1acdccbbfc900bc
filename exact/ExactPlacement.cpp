#include "ExactPlacement.h"

#include <algorithm>
#include <cstring>

#include "CheckedMath.h"

namespace velka {
namespace {

constexpr int64_t kPixelBytes = 3;

int64_t rowBytes(const BitmapView& bitmap) noexcept {
  return std::min<int64_t>(bitmap.stride / kPixelBytes, bitmap.width) * kPixelBytes;
}

// Those that hold anything.
int64_t rowsIn(const BitmapView& bitmap) noexcept {
  const auto stored = static_cast<int64_t>(std::min(bitmap.stored, bitmap.bytes.size()));
  return bitmap.stride == 0 ? 0 : stored / bitmap.stride;
}

}  // namespace

void growGeometryExactly(_OEMPDEV& pdev, int16_t orientation, const PageOffset& offset) noexcept {
  const GDIINFO source = pdev.srcGdiInfo;
  growGeometry(pdev, orientation, offset);
  pdev.srcGdiInfo = source;
  pdev.devGdiInfo.szlPhysSize = {truncateToInt32(pdev.bmInfoHeader.biWidth / pdev.dScaleX),
                                 truncateToInt32(pdev.bmInfoHeader.biHeight / pdev.dScaleY)};
}

void placePageExactly(const BitmapView& source, const BitmapView& output, int32_t rows,
                      const PageOffset& offset) noexcept {
  const int64_t from = std::max<int64_t>(-int64_t{offset.x}, 0) * kPixelBytes;
  const int64_t to = std::max<int64_t>(offset.x, 0) * kPixelBytes;
  const int64_t bytes = std::min(rowBytes(source) - from, rowBytes(output) - to);
  if (bytes <= 0) return;
  const int64_t first = std::max<int64_t>(offset.y, 0);
  const int64_t end = std::min({int64_t{rows}, rowsIn(output), rowsIn(source) + offset.y});
  for (int64_t row = first; row < end; ++row)
    std::memcpy(output.bytes.data() + row * output.stride + to,
                source.bytes.data() + (row - offset.y) * source.stride + from,
                static_cast<size_t>(bytes));
}

}  // namespace velka
