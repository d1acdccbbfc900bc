// Pages as cells of a grid: what lies where, struck twice or not.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Grid.h"
#include "PageReader.h"
#include "Paper.h"

namespace velka::decode {

/// The most cells of a grid that is held whole: a form of 15 x 42.5 inches at 360 dpi
/// fits.
inline constexpr int64_t kMostCells = int64_t{1} << 27;

/// The most cells that are counted, some rows at a time: ten metres of 15 inches at
/// 360 dpi fit.
inline constexpr int64_t kMostCountedCells = int64_t{1} << 30;

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

  void add(uint8_t cell, uint64_t times = 1);
};

/// Counts what drawCells() would draw; none where the sheet has more cells than
/// `kMostCountedCells`. The cells touched go with the dots, however large the sheet is.
[[nodiscard]] std::optional<CellCounts> countCells(const Page& page, Model model, const Grid& grid,
                                                   const Paper& paper);

/// The cells that a sheet has.
[[nodiscard]] int64_t cellsIn(const Grid& grid, const Paper& paper);

}  // namespace velka::decode
