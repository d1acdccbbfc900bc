// The page that shows which colours print red.
#pragma once

#include <string>
#include <vector>

#include "PageSettings.h"
#include "RowKernel.h"

namespace velka::calibration {

/// A colour of the page and the ink that the options give it.
struct ColourPatch {
  DotBox box;           ///< dots of 1/180 inch
  Ink ink = Ink::None;  ///< none where it stays white
  std::string number;   ///< of a row that a bound is read from, else empty
};

/// Patches of the same width, side by side.
struct ColourRow {
  std::string option;  ///< the bound that the row's numbers are for; empty in the chart
  int top = 0;
  std::vector<ColourPatch> patches;
};

/// The rows for three bounds, then those of the chart from light to dark: a grey, and the
/// hues from red round to magenta.
[[nodiscard]] std::vector<ColourRow> colourRows(const tagOEMCFG& options);

/// Dots from a patch of a row to the next.
[[nodiscard]] int pitchOf(const ColourRow& row);

/// A page to print with the bounds that it is made for, at any resolution. What prints red
/// with them has a line around it.
[[nodiscard]] Drawn coloursPage(const PageSettings& settings);

}  // namespace velka::calibration
