// From a page bitmap to the two ink planes of the Orlo model.
#pragma once

#include <cstdint>
#include <span>

#include "OrloPlane.h"
#include "Separation.h"

namespace velka {

/// Rows of size / height bytes, the first width x 3 of them pixels. Width and
/// height are above zero. The last `whiteRows` rows hold anything and count as white.
struct OrloBitmap {
  std::span<const uint8_t> bytes;
  int64_t width;
  int64_t height;
  int64_t whiteRows = 0;
  bool lastRowCounts = false;  ///< whatever inks are above it
};

/// Rows at the top of the page that an ink's head, lying that far down the paper
/// path, cannot reach.
struct HeadDistance {
  int64_t blackFrom;  ///< first row that black reaches
  int64_t redFrom;    ///< first row that red reaches
};
[[nodiscard]] HeadDistance headDistance(int verticalDpi, int feedMode) noexcept;

struct OrloPlanes {
  OrloPlane& black;
  OrloPlane& red;
  uint8_t* discard;  ///< a row to write what no plane keeps
};

/// Sorts the page's pixels into the planes, which have width x height bytes each and are
/// filled as far as the page's ink reaches.
/// Returns whether any pixel was stored.
bool classPage(const OrloBitmap& page, const InkRules& rules, int outputColorType,
               const HeadDistance& heads, const OrloPlanes& planes) noexcept;

}  // namespace velka
