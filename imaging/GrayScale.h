// The grey of a luminance without a power function per pixel.
//
// Grey depends on a colour through one number only, its luminance Y, and never
// falls while Y rises. So it is the number of cut points at or below Y, a cut
// point being the smallest Y that reaches a grey. The cut points are found by
// bisection with the very arithmetic of CColorManagment; tests compare all 2^24
// colours with it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velka {

/// A channel's contributions to Y for each byte, in 2^-32. Y is below 1, and colours
/// of different greys lie at least thirteen of these units apart, so the rounding of
/// three contributions hides no cut point.
using Contributions = std::array<uint32_t, 256>;

/// The contributions of red (0), green (1) and blue (2).
const std::array<Contributions, 3>& channelContributions();

class GrayScale {
 public:
  /// The only one; built on first use.
  static const GrayScale& instance();

  /// Grey of a luminance from 0 to that of white. White alone gives 255.
  [[nodiscard]] uint8_t gray(uint32_t luminance) const {
    return static_cast<uint8_t>((steps_[luminance >> kCellShift] + luminance) >> kCellShift);
  }

  /// The table that `gray` looks into, for kernels that do so themselves.
  [[nodiscard]] const uint32_t* steps() const { return steps_.data(); }

  /// Luminance is cut into 4096 cells. The closest cut points, those of the darkest
  /// greys, are about 1/2303 apart, so that a cell holds one at most.
  static constexpr unsigned kCellShift = 20;

 private:
  GrayScale();

  // What makes, added to a cell's luminance, the grey of its start the whole cells, and
  // one more from the cell's cut point on.
  std::array<uint32_t, size_t{1} << (32 - kCellShift)> steps_{};
};

/// What CColorManagment makes of a colour, some fifty times as fast.
uint8_t grayOfRgb(uint8_t r, uint8_t g, uint8_t b);

}  // namespace velka
