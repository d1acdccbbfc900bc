// The page that tells where prints come to lie on the paper.
#pragma once

#include "PageSettings.h"

namespace velka::calibration {

/// A scale of lines from the paper's edge: its line 0 lies `kReference` mm from the left
/// or (`down`) the top edge, the others where a print moved by so many millimetres would
/// bring it, right and down above 0. So the line that a ruler shows at `kReference` mm
/// has the number that an offset has to be set to.
inline constexpr int kReference = 30;

/// Numbers go from -kFarthest to kFarthest mm, in halves from -kHalves to kHalves, as the
/// options have them.
inline constexpr int kFarthest = 20;
inline constexpr int kHalves = 10;

/// The dot of 1/180 inch, from the edge, that the line of so many tenths of a millimetre
/// lies on: as far from that of 0 as an offset of that many moves the page.
[[nodiscard]] int lineAt(int tenths);

/// Where the lines of the two scales start and how long those of whole fives are, in dots
/// of 1/180 inch; they end where they start on the scale that goes across.
struct PositionFields {
  int acrossFoot;
  int downFoot;
  int longest;
};
[[nodiscard]] PositionFields positionFields();

/// A page to print at 180 x 180 dpi without offsets, in black alone.
[[nodiscard]] Drawn positionPage(const PageSettings& settings);

}  // namespace velka::calibration
