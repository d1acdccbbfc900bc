// The sheet that a page is shown on, and what of it the print takes.
#pragma once

#include <cstdint>

#include "Grid.h"
#include "PageReader.h"

namespace velka::decode {

/// A rectangle in units; right and bottom lie outside.
struct Area {
  int64_t left = 0;
  int64_t top = 0;
  int64_t right = 0;
  int64_t bottom = 0;

  [[nodiscard]] bool empty() const { return right <= left || bottom <= top; }
};

/// The smallest area that holds all dots of a page in their size on the grid; empty
/// where there is none. Looks at what lies at the area's edges, not at every dot.
[[nodiscard]] Area inkedArea(const Page& page, Model model, const Grid& grid);

/// The inks that a page strikes anywhere.
struct InksInUse {
  bool black = false;
  bool red = false;
};
[[nodiscard]] InksInUse inksInUse(const Page& page, Model model);

/// The length that a page's form is said to have, in units; 0: not said.
[[nodiscard]] int64_t formLength(const Page& page);

/// How wide paper is where it is not measured by the print alone.
struct PaperWidth {
  int64_t units = 0;
  bool fixed = false;  ///< what is printed beside it is lost; otherwise that widens it
};

/// A sheet of paper, in units.
struct Paper {
  int64_t width = 0;
  int64_t length = 0;
};

/// The paper that a page is shown on: as long as its form, longer where it prints
/// beyond that.
[[nodiscard]] Paper paperOf(const Page& page, Model model, const Grid& grid, PaperWidth width);

}  // namespace velka::decode
