// A calibration page on paper, from the stream that prints it, also from a printer that
// puts red or its second pass beside their places.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PageReader.h"

namespace velka::calibrationtest {

/// A dot in 1/3600 inch from the paper's top left corner.
struct Dot {
  int64_t x = 0;
  int64_t y = 0;
  bool red = false;
};

/// How far a printer's dots come to lie right of their places, or below them.
struct Astray {
  int64_t redRight = 0;
  int64_t redDown = 0;
  int64_t secondRight = 0;  ///< dots in odd rows of 1/360 inch
  int64_t secondDown = 0;
};

/// The dots of the one page of a stream; none where there is not just one.
[[nodiscard]] std::optional<std::vector<Dot>> readDots(const std::string& file,
                                                       decode::Model model);

[[nodiscard]] std::vector<Dot> astray(const std::vector<Dot>& dots, const Astray& how);

/// A part of the paper, in 1/3600 inch; right and bottom lie outside.
struct Field {
  int64_t left = 0;
  int64_t top = 0;
  int64_t right = 0;
  int64_t bottom = 0;

  [[nodiscard]] bool holds(const Dot& dot) const {
    return dot.x >= left && dot.x < right && dot.y >= top && dot.y < bottom;
  }
};

/// Where the lines begin that dots of an ink make in a field, along one axis: dots no more
/// than `pitch` apart are of one line.
[[nodiscard]] std::vector<int64_t> linesIn(const std::vector<Dot>& dots, bool red,
                                           const Field& field, bool down, int64_t pitch);

}  // namespace velka::calibrationtest
