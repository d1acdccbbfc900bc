// One ink's whole tone adjustment, compiled once a page.
#pragma once

#include <cstdint>

#include "GrayScale.h"

namespace velka {

/// An ink's tone settings as the options give them.
struct InkTone {
  int brightness;  ///< added to every level
  int contrast;    ///< per cent added to 100
  int levels;      ///< gamma of the midtones, in hundredths
};

/// The grey that an ink prints for a source pixel: light table, levels table and
/// grey of the colour, folded into three tables of contributions to luminance.
class ToneTable {
 public:
  explicit ToneTable(const InkTone& settings);

  /// Grey (0 darkest) of a pixel with these blue, green and red bytes.
  [[nodiscard]] uint8_t tone(uint8_t p0, uint8_t p1, uint8_t p2) const {
    // Brightness and contrast leave pure black and pure white alone.
    if ((p0 | p1 | p2) == 0) {
      return black_;
    }
    if ((p0 & p1 & p2) == 255) {
      return white_;
    }
    return scale_->gray(parts_[0][p0] + parts_[1][p1] + parts_[2][p2]);
  }

  /// The contributions of a pixel's byte `channel` (0 blue, 1 green, 2 red), and the
  /// grey of pure black, for kernels that look them up themselves.
  [[nodiscard]] const uint32_t* contributions(size_t channel) const {
    return parts_[channel].data();
  }
  [[nodiscard]] uint8_t black() const { return black_; }

 private:
  const GrayScale* scale_;
  std::array<Contributions, 3> parts_{};
  uint8_t black_ = 0;
  uint8_t white_ = 255;
};

}  // namespace velka
