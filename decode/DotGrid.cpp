#include "DotGrid.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

namespace velka::decode {
namespace {

constexpr int64_t kFinest = kUnitsPerInch / 720;
constexpr int64_t kUsual = kUnitsPerInch / 360;
constexpr int64_t kUnknown = kUnitsPerInch / 180;

int64_t cellsOf(int64_t units, int64_t cell) {
  return (units + cell - 1) / cell;
}

int64_t dotWidth(const Block& block, int64_t cell) {
  return std::max<int64_t>(1, block.mode.columnPitch / cell);
}

// Units from a row of dots to the next. A pass that struck nothing still tells of its
// rows by the way to them.
int64_t rowPitch(const Page& page) {
  int64_t pitch = page.paperStep;
  for (const Block& block : page.blocks) {
    pitch = std::gcd(std::gcd(pitch, block.mode.dotPitch), block.y);
  }
  return pitch;
}

// A sheet as cells.
struct Cells {
  int64_t width;
  int64_t height;

  Cells(const Grid& grid, const Paper& paper)
      : width(cellsOf(std::max<int64_t>(0, paper.width), grid.cell())),
        height(cellsOf(std::max<int64_t>(0, paper.length), grid.cell())) {}

  [[nodiscard]] bool tooMany() const { return width > 0 && height > kMostCells / width; }
};

// Calls `mark(cell, bits)` for each cell of each dot that starts on the sheet; the
// number of dots that do not.
template <typename Mark>
uint64_t markDots(const Page& page, Model model, const Grid& grid, const Paper& paper, Mark mark) {
  const Cells area(grid, paper);
  const int64_t cell = grid.cell();
  const int64_t high = dotHeight(page, grid);
  uint64_t outside = 0;
  for (const Block& block : page.blocks) {
    const int64_t wide = dotWidth(block, cell);
    forEachDot(block, model, [&](Ink ink, int64_t unitX, int64_t unitY) {
      if (unitX < 0 || unitY < 0 || unitX >= paper.width || unitY >= paper.length) {
        ++outside;
        return;
      }
      const int64_t x = unitX / cell;
      const int64_t y = unitY / cell;
      const unsigned bits = ink == Ink::Red ? kRedCell : kBlackCell;
      unsigned start = ink == Ink::Red ? kRedDot : kBlackDot;
      for (int64_t row = y; row < std::min(y + high, area.height); ++row) {
        for (int64_t column = x; column < std::min(x + wide, area.width); ++column) {
          mark(static_cast<size_t>(row * area.width + column),
               static_cast<uint8_t>(bits | std::exchange(start, 0U)));
        }
      }
    });
  }
  return outside;
}

uint64_t cellsOfAllDots(const Page& page, const Grid& grid) {
  uint64_t cells = 0;
  for (const Block& block : page.blocks) {
    uint64_t dots = 0;
    for (const uint8_t byte : block.data) dots += static_cast<uint64_t>(std::popcount(byte));
    cells += dots * static_cast<uint64_t>(dotWidth(block, grid.cell()) * dotHeight(page, grid));
  }
  return cells;
}

// For a few dots on a large sheet, whose cells would take longer than the dots.
CellCounts countFewCells(const Page& page, Model model, const Grid& grid, const Paper& paper) {
  constexpr unsigned kBits = 4;
  std::vector<uint64_t> marks;  // a cell's number above its bits
  markDots(page, model, grid, paper,
           [&](size_t cell, uint8_t bits) { marks.push_back(uint64_t{cell} << kBits | bits); });
  std::sort(marks.begin(), marks.end());
  CellCounts counts;
  unsigned bits = 0;
  for (size_t i = 0; i < marks.size(); ++i) {
    bits |= static_cast<unsigned>(marks[i] & ((1U << kBits) - 1));
    const bool more = i + 1 < marks.size() && marks[i + 1] >> kBits == marks[i] >> kBits;
    if (!more) counts.add(static_cast<uint8_t>(std::exchange(bits, 0U)));
  }
  counts.touched = 2 * marks.size();
  return counts;
}

}  // namespace

void Grid::add(const Page& page) {
  for (const Block& block : page.blocks) {
    step = std::gcd(std::gcd(step, block.mode.columnPitch), block.x);
    step = std::gcd(std::gcd(step, block.mode.dotPitch), block.y);
  }
}

int64_t Grid::cell() const {
  if (step == 0) return kUnknown;
  return step < kFinest ? kUsual : step;
}

int64_t dotHeight(const Page& page, const Grid& grid) {
  return std::max<int64_t>(1, rowPitch(page) / grid.cell());
}

Area inkedArea(const Page& page, Model model, const Grid& grid) {
  Area area{INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
  const int64_t high = dotHeight(page, grid) * grid.cell();
  for (const Block& block : page.blocks) {
    const int64_t wide = dotWidth(block, grid.cell()) * grid.cell();
    forEachDot(block, model, [&](Ink, int64_t x, int64_t y) {
      area.left = std::min(area.left, x);
      area.top = std::min(area.top, y);
      area.right = std::max(area.right, x + wide);
      area.bottom = std::max(area.bottom, y + high);
    });
  }
  return area.empty() ? Area{} : area;
}

int64_t formLength(const Page& page) {
  return int64_t{page.lines} * (kUnitsPerInch / 6);
}

Paper paperOf(const Page& page, Model model, const Grid& grid, PaperWidth width) {
  const Area inked = inkedArea(page, model, grid);
  return {width.fixed ? width.units : std::max(width.units, inked.right),
          std::max(formLength(page), inked.bottom)};
}

std::optional<DotGrid> drawCells(const Page& page, Model model, const Grid& grid,
                                 const Paper& paper) {
  const Cells area(grid, paper);
  if (area.tooMany()) return std::nullopt;
  DotGrid drawn;
  drawn.width = area.width;
  drawn.height = area.height;
  drawn.cells.assign(static_cast<size_t>(area.width * area.height), 0);
  drawn.outside = markDots(page, model, grid, paper,
                           [&](size_t cell, uint8_t bits) { drawn.cells[cell] |= bits; });
  return drawn;
}

void CellCounts::add(uint8_t cell) {
  covered[0] += (cell & kBlackCell) != 0 ? 1 : 0;
  covered[1] += (cell & kRedCell) != 0 ? 1 : 0;
  dots[0] += (cell & kBlackDot) != 0 ? 1 : 0;
  dots[1] += (cell & kRedDot) != 0 ? 1 : 0;
}

std::optional<CellCounts> countCells(const Page& page, Model model, const Grid& grid,
                                     const Paper& paper) {
  // Sorting a mark takes about as long as clearing and reading so many cells.
  constexpr uint64_t kCellsWorthAMark = 64;
  if (Cells(grid, paper).tooMany()) return std::nullopt;
  const auto all = static_cast<uint64_t>(cellsIn(grid, paper));
  const uint64_t marks = cellsOfAllDots(page, grid);
  if (marks < all / kCellsWorthAMark) return countFewCells(page, model, grid, paper);
  const auto drawn = drawCells(page, model, grid, paper);
  if (!drawn) return std::nullopt;
  CellCounts counts;
  for (const uint8_t cell : drawn->cells) counts.add(cell);
  counts.touched = all + marks;
  return counts;
}

int64_t cellsIn(const Grid& grid, const Paper& paper) {
  const Cells area(grid, paper);
  return area.width * area.height;
}

}  // namespace velka::decode
