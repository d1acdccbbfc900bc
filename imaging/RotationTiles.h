// Quarter turns in tiles of four by four pixels.
#pragma once

#include <cstdint>

namespace velka {

constexpr int64_t kTile = 4;
/// Pixels that a tile reads past its own columns.
constexpr int64_t kTileReach = 2;

/// Rows and columns of three-byte pixels to exchange, both whole tiles.
struct TileTurn {
  const uint8_t* src;
  int64_t srcStep;  ///< from one source row to the next
  uint8_t* dst;
  int64_t dstStep;  ///< from one target row to the next
  int64_t columns;  ///< of the source
  int64_t rows;
};

/// Source column i becomes target row i, source row j becomes target column j.
void turnTilesSsse3(const TileTurn& turn) noexcept;

}  // namespace velka
