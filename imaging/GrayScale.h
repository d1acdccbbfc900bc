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
  // The closest cut points, those of the darkest greys, are about 1/2303 apart.
  static constexpr unsigned kCellBits = 12;

  /// The only one; built on first use.
  static const GrayScale& instance();

  /// Grey of a luminance from 0 to that of white. White alone gives 255.
  [[nodiscard]] uint8_t gray(uint32_t luminance) const {
    // Cells are narrower than any two cut points are apart: one step will do.
    const unsigned below = cutsBelowCell_[luminance >> (32 - kCellBits)];
    return static_cast<uint8_t>(below + (luminance >= cuts_[below] ? 1U : 0U));
  }

  /// The two tables that `gray` looks into, for kernels that do so themselves.
  [[nodiscard]] const uint8_t* cutsBelowCell() const { return cutsBelowCell_.data(); }
  [[nodiscard]] const uint32_t* cuts() const { return cuts_.data(); }

 private:
  GrayScale();

  std::array<uint8_t, size_t{1} << kCellBits> cutsBelowCell_{};
  std::array<uint32_t, 256> cuts_{};  // cuts_[g] is the smallest Y above grey g
};

/// What CColorManagment makes of a colour, some fifty times as fast.
uint8_t grayOfRgb(uint8_t r, uint8_t g, uint8_t b);

}  // namespace velka
