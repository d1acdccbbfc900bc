// A page's cells, some rows at a time, so that no page is too long to be drawn.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <span>
#include <utility>

#include "BlockIndex.h"
#include "DotGrid.h"

namespace velka::decode {

/// Draws those dots of a page that start on a sheet of paper. The page must outlive it.
class PageCells {
 public:
  PageCells(const Page& page, Model model, const Grid& grid, const Paper& paper);

  /// Of the whole sheet, in cells.
  [[nodiscard]] int64_t width() const { return width_; }
  [[nodiscard]] int64_t height() const { return height_; }

  /// Whether no dot can lie on these rows.
  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const;

  /// Fills `cells` with the rows from `top` on, width() cells each.
  void draw(int64_t top, std::span<uint8_t> cells) const;

  /// Calls `mark(row, column, bits)` for each cell of each dot on these rows; a cell
  /// comes as often as it is struck.
  template <typename Mark>
  void forEachMark(int64_t top, int64_t bottom, Mark mark) const {
    blocks_.forEachTouching(unitsAbove(top), bottom * cell_,
                            [&](const Block& block) { markBlock(block, top, bottom, mark); });
  }

 private:
  // Where a pin strikes: its first row of cells, and the bits there.
  struct Struck {
    int64_t row = 0;
    uint8_t bits = 0;  // 0: not on the sheet
    uint8_t start = 0;
  };
  static constexpr size_t kMostPins = 72;

  // The highest place of a dot that still touches that row.
  [[nodiscard]] int64_t unitsAbove(int64_t row) const { return (row - high_ + 1) * cell_; }
  [[nodiscard]] std::array<Struck, kMostPins> pinsOf(const Block& block) const;

  template <typename Mark>
  void markBlock(const Block& block, int64_t top, int64_t bottom, Mark mark) const {
    const std::array<Struck, kMostPins> pins = pinsOf(block);
    const size_t bytes = block.mode.bytesPerColumn;
    const int64_t wide = dotWidth(block, grid_);
    for (size_t i = 0; i < block.data.size(); ++i) {
      unsigned dots = block.data[i];
      if (dots == 0) continue;
      const int64_t x = block.x + static_cast<int64_t>(i / bytes) * block.mode.columnPitch;
      if (x < 0 || x >= paper_.width) continue;
      const int64_t left = x / cell_;
      for (; dots != 0; dots &= dots - 1) {
        const size_t bit = 7 - static_cast<size_t>(std::countr_zero(dots));
        markDot(pins[i % bytes * 8 + bit], left, wide, {top, bottom}, mark);
      }
    }
  }

  template <typename Mark>
  void markDot(const Struck& pin, int64_t left, int64_t wide, std::pair<int64_t, int64_t> rows,
               Mark& mark) const {
    if (pin.bits == 0) return;
    const int64_t right = std::min(left + wide, width_);
    const int64_t end = std::min(pin.row + high_, rows.second);
    for (int64_t row = std::max(pin.row, rows.first); row < end; ++row) {
      mark(row, left, static_cast<uint8_t>(pin.bits | (row == pin.row ? pin.start : 0)));
      for (int64_t column = left + 1; column < right; ++column) mark(row, column, pin.bits);
    }
  }

  Model model_;
  Paper paper_;
  Grid grid_;
  int64_t cell_;
  int64_t high_;  // of a dot
  int64_t width_;
  int64_t height_;
  BlockIndex blocks_;
};

/// Dots of a page that are struck beside the paper.
[[nodiscard]] uint64_t dotsOutside(const Page& page, Model model, const Paper& paper);

}  // namespace velka::decode
