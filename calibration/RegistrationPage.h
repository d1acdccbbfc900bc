// The page that tells how red lies against black, and the second pass at 360 dpi against
// the first.
#pragma once

#include <vector>

#include "PageSettings.h"
#include "Vernier.h"

namespace velka::calibration {

/// Between two lines of the first pass a line of the second, another place in each
/// column: where it is in the middle the number is that of the second pass's way.
struct Betweens {
  int left = 0;    ///< dots of the drawing, of the first column
  int top = 0;     ///< of the upper line of the first pass
  int pitch = 0;   ///< of the columns
  int length = 0;  ///< of a line
  int apart = 0;   ///< from the first pass's upper line to its lower one
  int steps = 3;   ///< numbers go from -steps to steps
  int step = 2;
};
[[nodiscard]] DotBox upperLine(const Betweens& betweens, int number);
[[nodiscard]] DotBox lowerLine(const Betweens& betweens, int number);
[[nodiscard]] DotBox middleLine(const Betweens& betweens, int number);

/// What is read on the page, in dots of 1/360 inch. The passes' lines across are dots in
/// every second row: the fixed ones in those that the first pass strikes.
struct RegistrationFields {
  Vernier across;
  Vernier along;
  Vernier passesAcross;
  Betweens passesAlong;
};
[[nodiscard]] RegistrationFields registrationFields();

/// A page to print at 360 x 360 dpi; at other resolutions its first two fields can be
/// read. A step of all fields is 1/180 inch.
[[nodiscard]] Drawn registrationPage(const PageSettings& settings);

}  // namespace velka::calibration
