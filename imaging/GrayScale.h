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

/// One table of a channel's contributions to Y for each byte.
using Contributions = std::array<double, 256>;

/// The contributions of red (0), green (1) and blue (2).
const std::array<Contributions, 3>& channelContributions();

class GrayScale {
 public:
  /// The only one; built on first use.
  static const GrayScale& instance();

  /// Grey of a luminance from 0 to that of white. White alone gives 255.
  [[nodiscard]] uint8_t gray(double luminance) const {
    const auto cell = static_cast<size_t>(luminance * kCells);
    // Cells are narrower than any two cut points are apart: one step will do.
    const unsigned below = cutsBelowCell_[cell];
    return static_cast<uint8_t>(below + (luminance >= cuts_[below] ? 1U : 0U));
  }

 private:
  // The closest cut points, those of the darkest greys, are about 1/2303 apart.
  static constexpr int kCells = 4096;

  GrayScale();

  std::array<uint8_t, kCells> cutsBelowCell_{};
  std::array<double, 256> cuts_{};  // cuts_[g] is the smallest Y above grey g
};

/// What CColorManagment makes of a colour, some fifty times as fast.
uint8_t grayOfRgb(uint8_t r, uint8_t g, uint8_t b);

}  // namespace velka
