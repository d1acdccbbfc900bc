// One A4 page at 360 x 360 dpi, at each of its stages, for the stage benchmarks.
#pragma once

#include <cstdint>
#include <vector>

#include "TestPage.h"

namespace velka::bench {

struct StagePage {
  Format format;
  size_t stride;                ///< of the bitmap
  std::vector<uint8_t> lines;   ///< as read: red, green, blue, unpadded
  std::vector<uint8_t> bitmap;  ///< blue, green, red, rows padded to 4 bytes
  std::vector<uint8_t> black;   ///< ink planes, a byte a pixel
  std::vector<uint8_t> red;
  std::vector<uint8_t> blackDots;  ///< the same halftoned
  std::vector<uint8_t> redDots;
};

/// Made once for each kind.
[[nodiscard]] const StagePage& stagePage(Kind kind);

}  // namespace velka::bench
