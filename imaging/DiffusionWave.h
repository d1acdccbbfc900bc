// Error diffusion of many rows at a time, for the settings that jobs use.
//
// Sixteen rows run abreast, a byte lane each and each two columns behind the row
// above: then everything that a pixel receives is there before its turn. The last
// of them only receives; it is the first of the next sixteen. Where a dot counts as
// full black, an error is the value or its complement, so its shares fit bytes, and
// saturating additions are the limits to 0..255. Stretches of full ink and paper that
// no error reaches are passed over.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velka {

/// Rows of bytes, `stride` apart.
struct DiffusionRows {
  uint8_t* in;
  uint8_t* out;  ///< may be `in`
  size_t rows;
  size_t columns;
  size_t stride;
};

/// Whether diffuseWave gives the result of DiffusionTable for these settings.
[[nodiscard]] constexpr bool waveServes(short dotFactor, short threshold) noexcept {
  return dotFactor == 0 && threshold >= 0 && threshold <= 254;
}

/// Halftones rows from the top as diffuseRow does with a dot factor of 0, as many as
/// make whole groups. Returns their number; the errors of the last one are in the
/// row below, which is always left over.
size_t diffuseWave(const DiffusionRows& plane, uint8_t threshold) noexcept;

}  // namespace velka
