// The page that shows tones as other settings of brightness, contrast and middle tones
// would print them.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "PageSettings.h"
#include "RowKernel.h"

namespace velka::calibration {

/// A field of the page: the tone of one colour with one value of one option, drawn in the
/// colour that prints so with the options that the page is made for.
struct TonePatch {
  std::string option;
  std::string value;
  Ink ink = Ink::None;
  int shade = 0;        ///< which colour: 0 darkest
  uint8_t wanted = 0;   ///< plane value that the value gives the colour, 0 full ink
  uint8_t printed = 0;  ///< plane value of what is drawn
  int quarters = 4;     ///< of four cells that hold the colour
  bool now = false;     ///< the value is what the page is made for
  DotBox box;           ///< dots of 1/180 inch
};

/// The patches, option by option, value by value; empty where the options print one ink
/// alone, or nothing in red.
[[nodiscard]] std::vector<TonePatch> tonePatches(const tagOEMCFG& options);

/// A page to print with the options that it is made for, at any resolution. All red is
/// below all black.
[[nodiscard]] Drawn tonesPage(const PageSettings& settings);

}  // namespace velka::calibration
