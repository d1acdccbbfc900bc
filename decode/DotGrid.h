// Pages as cells of a grid: what lies where, struck twice or not.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "PageReader.h"

namespace velka::decode {

/// The distance that all dots of some pages lie on.
struct Grid {
  int64_t step = 0;  ///< units, the same across and down; 0: no dot so far

  /// Takes a page in.
  void add(const Page& page);

  /// The finest step is 1/720 inch; what does not lie on it is rounded down to
  /// 1/360 inch. Without any dot 1/180 inch.
  [[nodiscard]] int64_t cell() const;
};

/// How many cells high a page's dots are: as the rows lie apart that it strikes or
/// moves to, whatever the rows of other pages on the same grid do.
[[nodiscard]] int64_t dotHeight(const Page& page, const Grid& grid);

/// A rectangle in units; right and bottom lie outside.
struct Area {
  int64_t left = 0;
  int64_t top = 0;
  int64_t right = 0;
  int64_t bottom = 0;

  [[nodiscard]] bool empty() const { return right <= left || bottom <= top; }
};

/// The smallest area that holds all dots of a page in their size on the grid; empty
/// where there is none.
[[nodiscard]] Area inkedArea(const Page& page, Model model, const Grid& grid);

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

/// The most cells a grid may have: a form of 15 x 42.5 inches at 360 dpi fits.
inline constexpr int64_t kMostCells = int64_t{1} << 27;

/// Bits of a cell: what covers it, and what starts there, so that cells count dots.
inline constexpr uint8_t kBlackCell = 1;
inline constexpr uint8_t kRedCell = 2;
inline constexpr uint8_t kBlackDot = 4;
inline constexpr uint8_t kRedDot = 8;

/// The cells of a page from its top left corner; row after row.
struct DotGrid {
  int64_t width = 0;
  int64_t height = 0;
  std::vector<uint8_t> cells;
  uint64_t outside = 0;  ///< dots struck beside the paper

  [[nodiscard]] uint8_t at(int64_t x, int64_t y) const {
    return cells[static_cast<size_t>(y * width + x)];
  }
};

/// Puts the dots of `page` that start on a sheet of paper into cells. None where the
/// sheet has more cells than `kMostCells`.
[[nodiscard]] std::optional<DotGrid> drawCells(const Page& page, Model model, const Grid& grid,
                                               const Paper& paper);

/// Cells of a sheet, for black and red.
struct CellCounts {
  std::array<uint64_t, 2> covered{};  ///< by dots in their size
  std::array<uint64_t, 2> dots{};     ///< where a dot starts
  uint64_t touched = 0;               ///< written or looked at to find out

  void add(uint8_t cell);
};

/// Counts what drawCells() would draw, none where that gives none. The cells touched
/// go with the dots, however large the sheet is.
[[nodiscard]] std::optional<CellCounts> countCells(const Page& page, Model model, const Grid& grid,
                                                   const Paper& paper);

/// The cells that a sheet has.
[[nodiscard]] int64_t cellsIn(const Grid& grid, const Paper& paper);

}  // namespace velka::decode
