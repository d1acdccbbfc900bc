// Two rows of lines, one a little closer than the other: the number at which a line of the
// one goes on in a line of the other tells how far the two lie apart.
#pragma once

#include "DotDrawing.h"

namespace velka::calibration {

/// In dots of the drawing. The lines stand side by side across the page, or below each
/// other (`down`); line 0 of both lies at `zero`, line i of the fixed ones `pitch` x i
/// farther, that of the moving ones (`pitch` - `step`) x i. So where the moving lines come
/// to lie `step` x i too far right or down, line i of both meets.
struct Vernier {
  bool down = false;
  int zero = 0;
  int steps = 10;  ///< numbers go from -steps to steps
  int pitch = 20;
  int step = 1;
  int thick = 1;
  int fixedAt = 0;  ///< where the fixed lines start across
  int movingAt = 0;
  int length = 0;  ///< of a line
  Colour fixed = kBlack;
  Colour moving = kRed;
};

/// A line of the fixed ones, and of the moving ones.
[[nodiscard]] DotBox fixedLine(const Vernier& vernier, int number);
[[nodiscard]] DotBox movingLine(const Vernier& vernier, int number);

}  // namespace velka::calibration
