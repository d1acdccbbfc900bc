#include "DotGrid.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace velka::decode {
namespace {

constexpr int64_t kFinest = kUnitsPerInch / 720;
constexpr int64_t kUsual = kUnitsPerInch / 360;
constexpr int64_t kUnknown = kUnitsPerInch / 180;

int64_t floorDivide(int64_t a, int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

int64_t cellsOf(int64_t units, int64_t cell) {
  return (units + cell - 1) / cell;
}

int64_t dotWidth(const Block& block, int64_t cell) {
  return std::max<int64_t>(1, block.mode.columnPitch / cell);
}

// An area as cells.
struct Cells {
  int64_t width;
  int64_t height;

  Cells(const Grid& grid, int64_t across, int64_t down)
      : width(cellsOf(std::max<int64_t>(0, across), grid.cell())),
        height(cellsOf(std::max<int64_t>(0, down), grid.cell())) {}

  [[nodiscard]] bool tooMany() const { return width > 0 && height > kMostCells / width; }
};

// Calls `mark(ink, cell)` for each cell of each dot that starts inside; the number
// of dots that do not.
template <typename Mark>
uint64_t markDots(const Page& page, Model model, const Grid& grid, const Cells& area, Extent extent,
                  Mark mark) {
  const int64_t cell = grid.cell();
  const bool whole = extent == Extent::Whole;
  const int64_t high = whole ? grid.dotHeight() : 1;
  uint64_t outside = 0;
  for (const Block& block : page.blocks) {
    const int64_t wide = whole ? dotWidth(block, cell) : 1;
    forEachDot(block, model, [&](Ink ink, int64_t unitX, int64_t unitY) {
      const int64_t x = floorDivide(unitX, cell);
      const int64_t y = floorDivide(unitY, cell);
      if (x < 0 || y < 0 || x >= area.width || y >= area.height) {
        ++outside;
        return;
      }
      for (int64_t row = y; row < std::min(y + high, area.height); ++row) {
        for (int64_t column = x; column < std::min(x + wide, area.width); ++column) {
          mark(ink, static_cast<size_t>(row * area.width + column));
        }
      }
    });
  }
  return outside;
}

uint64_t dotsStruck(const Page& page) {
  uint64_t dots = 0;
  for (const Block& block : page.blocks) {
    for (const uint8_t byte : block.data) dots += static_cast<uint64_t>(std::popcount(byte));
  }
  return dots;
}

// For a few dots on a large form, whose cells would take longer than the dots.
std::array<uint64_t, 2> countFewCells(const Page& page, Model model, const Grid& grid,
                                      const Cells& area, Extent extent) {
  std::array<std::vector<size_t>, 2> marked;
  markDots(page, model, grid, area, extent,
           [&](Ink ink, size_t cell) { marked.at(static_cast<size_t>(ink)).push_back(cell); });
  std::array<uint64_t, 2> counts{};
  for (size_t ink = 0; ink < marked.size(); ++ink) {
    std::vector<size_t>& cells = marked.at(ink);
    std::sort(cells.begin(), cells.end());
    counts.at(ink) = static_cast<uint64_t>(std::unique(cells.begin(), cells.end()) - cells.begin());
  }
  return counts;
}

}  // namespace

void Grid::add(const Page& page) {
  for (const Block& block : page.blocks) {
    down = std::gcd(std::gcd(down, block.mode.dotPitch), block.y);
    step = std::gcd(std::gcd(step, block.mode.columnPitch), std::gcd(block.x, down));
  }
}

int64_t Grid::cell() const {
  if (step == 0) return kUnknown;
  return step < kFinest ? kUsual : step;
}

int64_t Grid::dotHeight() const {
  return std::max<int64_t>(1, down / cell());
}

Area inkedArea(const Page& page, Model model, const Grid& grid) {
  Area area{INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
  const int64_t high = grid.dotHeight() * grid.cell();
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

std::optional<DotGrid> drawCells(const Page& page, Model model, const Grid& grid, int64_t width,
                                 int64_t height, Extent extent) {
  const Cells area(grid, width, height);
  if (area.tooMany()) return std::nullopt;
  DotGrid drawn;
  drawn.width = area.width;
  drawn.height = area.height;
  drawn.cells.assign(static_cast<size_t>(area.width * area.height), 0);
  drawn.outside = markDots(page, model, grid, area, extent, [&](Ink ink, size_t cell) {
    drawn.cells[cell] |= ink == Ink::Red ? kRedCell : kBlackCell;
  });
  return drawn;
}

std::optional<std::array<uint64_t, 2>> countCells(const Page& page, Model model, const Grid& grid,
                                                  int64_t width, int64_t height, Extent extent) {
  constexpr uint64_t kCellsWorthADot = 4096;
  const Cells area(grid, width, height);
  if (area.tooMany()) return std::nullopt;
  const auto all = static_cast<uint64_t>(area.width * area.height);
  if (dotsStruck(page) < all / kCellsWorthADot)
    return countFewCells(page, model, grid, area, extent);
  const auto drawn = drawCells(page, model, grid, width, height, extent);
  if (!drawn) return std::nullopt;
  std::array<uint64_t, 2> counts{};
  for (const uint8_t cell : drawn->cells) {
    counts[0] += (cell & kBlackCell) != 0 ? 1 : 0;
    counts[1] += (cell & kRedCell) != 0 ? 1 : 0;
  }
  return counts;
}

int64_t cellsIn(const Grid& grid, int64_t width, int64_t height) {
  const Cells area(grid, width, height);
  return area.width * area.height;
}

}  // namespace velka::decode
