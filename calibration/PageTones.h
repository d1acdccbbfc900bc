// Colours of a page by the tones that they print, with given options.
#pragma once

#include <optional>
#include <vector>

#include "DotDrawing.h"
#include "Separation.h"

namespace velka::calibration {

/// The colours that an ink's tones are made of, and what each prints.
class PageTones {
 public:
  /// Greys for black; dark reds, light ones and pure red for red.
  PageTones(const InkRules& rules, Ink ink);

  /// `quarters` of four cells hold the colour, the others stay white: tones between the
  /// lightest that prints and white need that.
  struct Tone {
    Colour colour;
    uint8_t value = 255;  ///< of the ink's plane, on the average
    int quarters = 4;
  };

  /// The one that prints nearest to `value`; white paper counts as 255. None where no
  /// colour prints in this ink.
  [[nodiscard]] std::optional<Tone> nearest(uint8_t value) const;

 private:
  void addLighter();

  std::vector<Tone> tones_;
};

/// What the rules make of a colour.
[[nodiscard]] InkDot inkOf(const InkRules& rules, Colour colour);

/// White paper.
inline constexpr Colour kWhite{255, 255, 255};

/// The reds that tones of red are made of and judged by: dark ones up to `kLightFrom`, and
/// from there lighter ones, none of which is taken for a grey or for white.
[[nodiscard]] Colour redOf(int depth);
inline constexpr int kReds = 489;

}  // namespace velka::calibration
