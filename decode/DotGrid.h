// Pages as cells of a grid: what lies where, struck twice or not.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "PageReader.h"

namespace velka::decode {

/// The distances that all dots of some pages lie on, in units.
struct Grid {
  int64_t step = 0;  ///< of positions, the same across and down; 0: no dot so far
  int64_t down = 0;  ///< of rows

  /// Takes a page in.
  void add(const Page& page);

  /// The finest step is 1/720 inch; what does not lie on it is rounded down to
  /// 1/360 inch. Without any dot 1/180 inch.
  [[nodiscard]] int64_t cell() const;
  /// How many cells high a dot is.
  [[nodiscard]] int64_t dotHeight() const;
};

/// A rectangle in units; right and bottom lie outside.
struct Area {
  int64_t left = 0;
  int64_t top = 0;
  int64_t right = 0;
  int64_t bottom = 0;

  [[nodiscard]] bool empty() const { return right <= left || bottom <= top; }
};

/// The smallest area that holds all dots of a page, each as large as the grid's;
/// empty where there is none.
[[nodiscard]] Area inkedArea(const Page& page, Model model, const Grid& grid);

/// The length that a page's form is said to have, in units; 0: not said.
[[nodiscard]] int64_t formLength(const Page& page);

/// The most cells a grid may have: a form of 15 x 42.5 inches at 360 dpi fits.
inline constexpr int64_t kMostCells = int64_t{1} << 27;

/// Bits of a cell.
inline constexpr uint8_t kBlackCell = 1;
inline constexpr uint8_t kRedCell = 2;

/// The cells of a page from its top left corner; row after row.
struct DotGrid {
  int64_t width = 0;
  int64_t height = 0;
  std::vector<uint8_t> cells;
  uint64_t outside = 0;  ///< dots struck beside the area

  [[nodiscard]] uint8_t at(int64_t x, int64_t y) const {
    return cells[static_cast<size_t>(y * width + x)];
  }
};

/// What of a dot is drawn.
enum class Extent : uint8_t {
  Whole,   ///< as many cells as the dot's pitch is wide and high
  Origin,  ///< its first cell alone, so that cells count dots
};

/// Puts the dots of `page` that start inside an area of `width` x `height` units
/// into cells. None where the area has more cells than `kMostCells`.
[[nodiscard]] std::optional<DotGrid> drawCells(const Page& page, Model model, const Grid& grid,
                                               int64_t width, int64_t height,
                                               Extent extent = Extent::Whole);

/// How many cells of such an area hold black and red; takes no longer than the
/// page's dots are worth. None where drawCells() gives none.
[[nodiscard]] std::optional<std::array<uint64_t, 2>> countCells(const Page& page, Model model,
                                                                const Grid& grid, int64_t width,
                                                                int64_t height, Extent extent);

/// The cells that such an area has.
[[nodiscard]] int64_t cellsIn(const Grid& grid, int64_t width, int64_t height);

}  // namespace velka::decode
