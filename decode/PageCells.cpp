#include "PageCells.h"

#include <algorithm>

#include "BlockSpan.h"

namespace velka::decode {
namespace {

bool isOn(const Paper& paper, int64_t x, int64_t y) {
  return x >= 0 && y >= 0 && x < paper.width && y < paper.length;
}

}  // namespace

PageCells::PageCells(const Page& page, Model model, const Grid& grid, const Paper& paper)
    : model_(model),
      paper_(paper),
      grid_(grid),
      cell_(grid.cell()),
      high_(dotHeight(page, grid)),
      width_(cellsIn(grid, paper.width)),
      height_(cellsIn(grid, paper.length)),
      blocks_(page, model) {}

bool PageCells::isBlank(int64_t top, int64_t rows) const {
  return blocks_.noneTouches(unitsAbove(top), (top + rows) * cell_);
}

std::array<PageCells::Struck, PageCells::kMostPins> PageCells::pinsOf(const Block& block) const {
  std::array<Struck, kMostPins> pins;
  for (int32_t bit = 0; bit < 8 * block.mode.bytesPerColumn; ++bit) {
    const Pin pin = pinOf(model_, bit, block.colour);
    const int64_t y = block.y + int64_t{pin.slot} * block.mode.dotPitch;
    if (!isOn(paper_, 0, y)) continue;
    const bool red = pin.ink == Ink::Red;
    pins.at(static_cast<size_t>(bit)) = {y / cell_, red ? kRedCell : kBlackCell,
                                         red ? kRedDot : kBlackDot};
  }
  return pins;
}

void PageCells::draw(int64_t top, std::span<uint8_t> cells) const {
  std::ranges::fill(cells, uint8_t{0});
  if (width_ == 0) return;
  const int64_t rows = static_cast<int64_t>(cells.size()) / width_;
  forEachMark(top, top + rows, [&](int64_t row, int64_t column, uint8_t bits) {
    cells[static_cast<size_t>((row - top) * width_ + column)] |= bits;
  });
}

uint64_t dotsOutside(const Page& page, Model model, const Paper& paper) {
  uint64_t outside = 0;
  for (const Block& block : page.blocks) {
    const bool whole =
        isOn(paper, block.x, block.y) && isOn(paper, lastColumnX(block), lowestPinY(block, model));
    if (whole) continue;
    forEachDot(block, model,
               [&](Ink, int64_t x, int64_t y) { outside += isOn(paper, x, y) ? 0 : 1; });
  }
  return outside;
}

}  // namespace velka::decode
