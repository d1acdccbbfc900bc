#include "PagePlacement.h"

#include <algorithm>
#include <cstring>

#include "CheckedMath.h"

namespace velka {
namespace {

constexpr int64_t kPixelBytes = 3;
constexpr int16_t kPortrait = 1;
constexpr int16_t kLandscape = 2;

// Direction choices: 0 and 1 name the two senses, anything else is no offset.
int32_t directed(int32_t direction, int32_t whenZero) noexcept {
  if (direction == 0) return whenZero;
  return direction == 1 ? wrappingNegate(whenZero) : 0;
}

uint32_t scaledPlus(double value, double scale, int32_t offset) noexcept {
  return static_cast<uint32_t>(truncateToInt32(value / scale + offset));
}

uint32_t scaled(double value, double scale) noexcept {
  return scaledPlus(value, scale, 0);
}

int64_t storedBytes(const BitmapView& bitmap) noexcept {
  return static_cast<int64_t>(std::min(bitmap.stored, bitmap.bytes.size()));
}

}  // namespace

int32_t tenthsToDots(int32_t tenths, int16_t dpi) noexcept {
  return truncateToInt32(static_cast<double>(tenths) * 100.0 * dpi / 25400.0 + 0.5);
}

PageOffset printOffset(const tagOEMCFG& options, const _DEVMODE& mode) noexcept {
  if (options.sHrzOffset == 0 && options.sVtcOffset == 0) return {};
  const int32_t across =
      directed(options.sHrzDir, tenthsToDots(options.sHrzOffset, mode.dmPrintQuality));
  const int32_t down =
      directed(options.sVtcDir, tenthsToDots(options.sVtcOffset, mode.dmYResolution));
  PageOffset offset = mode.dmOrientation == kPortrait ? PageOffset{across, down}
                                                      : PageOffset{down, wrappingNegate(across)};
  // The offset is meant for the page as it leaves the printer, after the turn.
  if (options.sRotation != 0) offset = {wrappingNegate(offset.x), wrappingNegate(offset.y)};
  return offset;
}

GDIINFO scaledGeometry(const GDIINFO& source, double scaleX, double scaleY) noexcept {
  GDIINFO out = source;
  // Deliberate: the vertical offset takes the horizontal value.
  out.ptlPhysOffset.x = truncateToInt32(source.ptlPhysOffset.x / scaleX);
  out.ptlPhysOffset.y = out.ptlPhysOffset.x;
  out.ulVertRes = scaled(source.ulVertRes, scaleY);
  out.ulVertSize = scaled(source.ulVertSize, scaleY);
  out.szlPhysSize.cy = truncateToInt32(source.szlPhysSize.cy / scaleY);
  return out;
}

// In place: with -O1, g++ 12 loses what is stored into a copy of a packed record's member.
void growGeometry(_OEMPDEV& pdev, int16_t orientation, const PageOffset& offset) noexcept {
  const double scaleX = pdev.dScaleX;
  const bool portrait = orientation == kPortrait;
  const int32_t down = portrait ? offset.y : wrappingNegate(offset.y);
  pdev.bmInfoHeaderOut.biWidth = wrappingAdd(pdev.bmInfoHeaderOut.biWidth, offset.x);
  pdev.bmInfoHeaderOut.biHeight = wrappingAdd(pdev.bmInfoHeaderOut.biHeight, down);
  pdev.devGdiInfo.ulHorzSize = scaledPlus(pdev.srcGdiInfo.ulHorzSize, scaleX, offset.x);
  pdev.devGdiInfo.ulHorzRes = scaledPlus(pdev.srcGdiInfo.ulHorzRes, scaleX, offset.x);
  tagSIZE size = pdev.devGdiInfo.szlPhysSize;
  size.cx = truncateToInt32(pdev.srcGdiInfo.szlPhysSize.cx / scaleX + offset.x);
  size.cy = wrappingAdd(size.cy, down);
  pdev.devGdiInfo.ulVertRes += static_cast<uint32_t>(down);
  pdev.devGdiInfo.ulVertSize += static_cast<uint32_t>(down);
  pdev.devGdiInfo.szlPhysSize = size;
  // Deliberate: the source keeps the grown size, so the next page grows from it.
  if (portrait && offset.y != 0) pdev.srcGdiInfo.szlPhysSize.cy = size.cy;
  if (!portrait && offset.x != 0) pdev.srcGdiInfo.szlPhysSize.cx = size.cx;
}

void placePage(const BitmapView& source, const BitmapView& output, int32_t rows,
               const PageOffset& offset) noexcept {
  const auto sourceSize = static_cast<int64_t>(source.bytes.size());
  const auto outputSize = static_cast<int64_t>(output.bytes.size());
  const int64_t stored = storedBytes(source);
  if (offset.x == 0 && offset.y == 0) {
    std::memcpy(output.bytes.data(), source.bytes.data(),
                static_cast<size_t>(std::min(stored, outputSize)));
    return;
  }
  const int64_t sourceColumn = std::max<int64_t>(-int64_t{offset.x}, 0) * kPixelBytes;
  const int64_t outputColumn = std::max<int64_t>(offset.x, 0) * kPixelBytes;
  const int64_t bytes = std::min(source.stride, output.stride);
  for (int64_t row = std::max(offset.y, 0); row < rows; ++row) {
    const int64_t from = (row - offset.y) * source.stride + sourceColumn;
    const int64_t to = row * output.stride + outputColumn;
    // Deliberate: a row that would end exactly at a buffer's end is not copied.
    if (to + bytes >= outputSize || from + bytes >= sourceSize || from >= stored) break;
    std::memcpy(output.bytes.data() + to, source.bytes.data() + from,
                static_cast<size_t>(std::min(bytes, stored - from)));
  }
}

size_t placedBytes(const BitmapView& source, const BitmapView& output,
                   const PageOffset& offset) noexcept {
  const int64_t stored = storedBytes(source);
  const int64_t stride = output.stride;
  if (stored == 0 || source.stride == 0 || stride == 0) return 0;
  const auto rowsOf = [stride](int64_t bytes) { return (bytes + stride - 1) / stride; };
  int64_t rows = rowsOf(stored);
  if (offset.x != 0 || offset.y != 0) {
    const int64_t last = (stored - 1) / source.stride + offset.y;
    // A row may end in the one below.
    const int64_t end = std::max<int64_t>(offset.x, 0) * kPixelBytes + source.stride;
    rows = last < 0 ? 0 : last + rowsOf(end);
  }
  return static_cast<size_t>(std::min(rows, static_cast<int64_t>(output.bytes.size()) / stride) *
                             stride);
}

int quarterTurns(int32_t rotation, int16_t orientation) noexcept {
  if (orientation != kLandscape) return rotation;
  return static_cast<int>((int64_t{rotation} * 90 + 270) % 360 / 90);
}

void turnGeometry(GDIINFO& geometry, int turns) noexcept {
  const GDIINFO before = geometry;
  const auto restOfWidth = low32(static_cast<uint32_t>(before.szlPhysSize.cx) - before.ulHorzRes -
                                 static_cast<uint32_t>(before.ptlPhysOffset.x));
  const auto restOfHeight = low32(static_cast<uint32_t>(before.szlPhysSize.cy) - before.ulVertRes -
                                  static_cast<uint32_t>(before.ptlPhysOffset.y));
  if (turns == 2) {
    geometry.ptlPhysOffset = {restOfWidth, restOfHeight};
    return;
  }
  if (turns != 1 && turns != 3) return;
  geometry.ulHorzRes = before.ulVertRes;
  geometry.ulVertRes = before.ulHorzRes;
  geometry.ulHorzSize = before.ulVertSize;
  geometry.ulVertSize = before.ulHorzSize;
  geometry.szlPhysSize = {before.szlPhysSize.cy, before.szlPhysSize.cx};
  geometry.ptlPhysOffset = turns == 1 ? _POINTL{before.ptlPhysOffset.y, restOfWidth}
                                      : _POINTL{restOfHeight, before.ptlPhysOffset.x};
}

}  // namespace velka
