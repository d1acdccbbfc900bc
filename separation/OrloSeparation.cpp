#include "OrloSeparation.h"

#include <algorithm>

namespace velka {
namespace {

constexpr int kBackFeed = 2;
constexpr int kBlackOnly = 1;
constexpr int kRedOnly = 2;

// Marks the row's stored columns; false where the row had none to store.
bool keep(OrloPlane& plane, int64_t first, int64_t last, int64_t row) noexcept {
  if (first < 0) return false;
  plane.hasData = true;
  plane.widen(static_cast<int32_t>(first), static_cast<int32_t>(last), static_cast<int32_t>(row));
  return true;
}

bool classRow(std::span<const uint8_t> pixels, int64_t width, int64_t row, const InkRules& rules,
              int outputColorType, const HeadDistance& heads, const OrloPlanes& planes) noexcept {
  const bool keepsBlack = row >= heads.blackFrom;
  const bool keepsRed = row >= heads.redFrom;
  const int64_t at = row * width;
  if (keepsBlack) planes.black.fillTo(static_cast<uint64_t>(at + width));
  if (keepsRed) planes.red.fillTo(static_cast<uint64_t>(at + width));
  const RowInk ink =
      separateRow(rules, pixels, keepsBlack ? planes.black.data + at : planes.discard,
                  keepsRed ? planes.red.data + at : planes.discard);
  // A page of one ink takes the other one's plane out of print.
  if (outputColorType == kBlackOnly && ink.black) planes.red.hasData = false;
  if (outputColorType == kRedOnly && ink.firstRedColumn >= 0) planes.black.hasData = false;
  const bool black =
      keepsBlack && keep(planes.black, ink.firstBlackColumn, ink.lastBlackColumn, row);
  const bool red = keepsRed && keep(planes.red, ink.firstRedColumn, ink.lastRedColumn, row);
  return black || red;
}

}  // namespace

HeadDistance headDistance(int verticalDpi, int feedMode) noexcept {
  const int64_t k = verticalDpi == 360 ? 2 : 1;
  if (feedMode == kBackFeed) return {16 * k, 0};
  return {0, 28 * k};
}

bool classPage(const OrloBitmap& page, const InkRules& rules, int outputColorType,
               const HeadDistance& heads, const OrloPlanes& planes) noexcept {
  const size_t stride = page.bytes.size() / static_cast<size_t>(page.height);
  const size_t pixelBytes = std::min(stride, static_cast<size_t>(page.width) * kRgbBytes);
  bool stored = false;
  for (int64_t row = 0; row < page.height - page.whiteRows; ++row) {
    const auto bytes = page.bytes.subspan(static_cast<size_t>(row) * stride, stride);
    if (isBlankRow(bytes)) continue;
    // Deliberate: the last row counts only where both inks are on the page already.
    const bool bothInks = planes.black.hasData && planes.red.hasData;
    if (row == page.height - 1 && !bothInks && !page.lastRowCounts) break;
    stored |=
        classRow(bytes.first(pixelBytes), page.width, row, rules, outputColorType, heads, planes);
  }
  return stored;
}

}  // namespace velka
