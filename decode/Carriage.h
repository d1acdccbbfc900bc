// Where head and paper stand while a stream is carried out.
#pragma once

#include <cstdint>

#include "CommandReader.h"

namespace velka::decode {

/// Positions in 1/3600 inch. A command moves by at most 2^23 units, so no stream
/// that fits memory can overflow them.
struct Carriage {
  int64_t x = 0;       ///< from the left edge, to the right
  int64_t y = 0;       ///< of the head's first dot, down from the top of the form
  int32_t unit = 10;   ///< of moves
  int32_t colour = 0;  ///< of blocks: 0 black, 1 red, 2 both
  int32_t lines = 0;   ///< page length in 1/6 inch; 0: not said

  /// Carries out a command; a block moves the head behind its last column.
  void apply(const Command& command);
};

/// Millimetres of a length in units.
[[nodiscard]] inline double millimetres(int64_t units) {
  return static_cast<double>(units) * 25.4 / static_cast<double>(kUnitsPerInch);
}

}  // namespace velka::decode
