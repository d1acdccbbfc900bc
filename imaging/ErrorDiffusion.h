// One row of Floyd-Steinberg error diffusion on bytes.
//
// The error of a pixel depends on its value alone, so its four shares stand in a
// table. A value that leaves no error (paper white, mostly) is passed over in
// runs. The four shares are added in a fixed order with a limit to 0..255 after
// each, and these additions do not commute: right-down, down, left-down, right is
// the order in which a pixel receives them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velka {

/// What a pixel of one value becomes and hands on.
struct DiffusionTable {
  /// Shares of an error, limited to -255..255: more makes no difference.
  struct Shares {
    int16_t right;
    int16_t leftDown;
    int16_t down;
    int16_t rightDown;
  };

  /// `dotFactor` is a printed dot's level in tenths of the pixel's value; values up
  /// to `threshold` print. Any values will do.
  DiffusionTable(short dotFactor, short threshold);

  std::array<Shares, 256> shares;
  std::array<uint8_t, 256> output;  ///< 0 dot, 255 blank
  std::array<bool, 256> clean;      ///< whether all shares are 0
};

/// Halftones `columns` pixels of `row` into `out`; the errors go to `row` itself
/// and to `below`, which is null for the last row. `out` may be `row`.
void diffuseRow(const DiffusionTable& table, uint8_t* row, uint8_t* below, uint8_t* out,
                size_t columns);

}  // namespace velka
