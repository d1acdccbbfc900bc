// What of the paper a block can reach at most, from its place and size alone.
#pragma once

#include <cstdint>

#include "PageReader.h"

namespace velka::decode {

/// The columns of a block.
[[nodiscard]] inline int64_t columnsOf(const Block& block) {
  return static_cast<int64_t>(block.data.size()) / block.mode.bytesPerColumn;
}

/// The place of its last column, in units.
[[nodiscard]] inline int64_t lastColumnX(const Block& block) {
  return block.x + (columnsOf(block) - 1) * block.mode.columnPitch;
}

/// The place of its lowest pin, in units.
[[nodiscard]] inline int64_t lowestPinY(const Block& block, Model model) {
  const int32_t lowest = 8 * block.mode.bytesPerColumn - 1;
  return block.y + int64_t{pinOf(model, lowest, block.colour).slot} * block.mode.dotPitch;
}

}  // namespace velka::decode
