#include "DotGrid.h"

#include <algorithm>
#include <bit>
#include <span>
#include <utility>

#include "PageCells.h"

namespace velka::decode {
namespace {

constexpr unsigned kBits = 4;  // of a cell
constexpr unsigned kKinds = 1U << kBits;

bool tooMany(const PageCells& cells, int64_t most) {
  return cells.width() > 0 && cells.height() > most / cells.width();
}

uint64_t cellsOfAllDots(const Page& page, const Grid& grid) {
  uint64_t cells = 0;
  for (const Block& block : page.blocks) {
    uint64_t dots = 0;
    for (const uint8_t byte : block.data) dots += static_cast<uint64_t>(std::popcount(byte));
    cells += dots * static_cast<uint64_t>(dotWidth(block, grid) * dotHeight(page, grid));
  }
  return cells;
}

// For a few dots on a large sheet, whose cells would take longer than the dots.
CellCounts countFewCells(const PageCells& cells) {
  std::vector<uint64_t> marks;  // a cell's number above its bits
  cells.forEachMark(0, cells.height(), [&](int64_t row, int64_t column, uint8_t bits) {
    marks.push_back(static_cast<uint64_t>(row * cells.width() + column) << kBits | bits);
  });
  std::sort(marks.begin(), marks.end());
  CellCounts counts;
  unsigned bits = 0;
  for (size_t i = 0; i < marks.size(); ++i) {
    bits |= static_cast<unsigned>(marks[i] & (kKinds - 1));
    const bool more = i + 1 < marks.size() && marks[i + 1] >> kBits == marks[i] >> kBits;
    if (!more) counts.add(static_cast<uint8_t>(std::exchange(bits, 0U)));
  }
  counts.touched = 2 * marks.size();
  return counts;
}

CellCounts countAllCells(const PageCells& cells) {
  constexpr int64_t kStripCells = int64_t{1} << 20;
  std::array<uint64_t, kKinds> times{};
  const int64_t rows = std::max<int64_t>(1, kStripCells / std::max<int64_t>(1, cells.width()));
  std::vector<uint8_t> strip(static_cast<size_t>(rows * cells.width()));
  for (int64_t top = 0; top < cells.height(); top += rows) {
    const int64_t most = std::min(rows, cells.height() - top);
    const auto part = std::span(strip).first(static_cast<size_t>(most * cells.width()));
    cells.draw(top, part);
    for (const uint8_t cell : part) ++times[cell % kKinds];
  }
  CellCounts counts;
  for (unsigned kind = 0; kind < kKinds; ++kind) {
    counts.add(static_cast<uint8_t>(kind), times.at(kind));
  }
  return counts;
}

}  // namespace

std::optional<DotGrid> drawCells(const Page& page, Model model, const Grid& grid,
                                 const Paper& paper) {
  const PageCells cells(page, model, grid, paper);
  if (tooMany(cells, kMostCells)) return std::nullopt;
  DotGrid drawn;
  drawn.width = cells.width();
  drawn.height = cells.height();
  drawn.cells.resize(static_cast<size_t>(drawn.width * drawn.height));
  cells.draw(0, drawn.cells);
  drawn.outside = dotsOutside(page, model, paper);
  return drawn;
}

void CellCounts::add(uint8_t cell, uint64_t times) {
  covered[0] += (cell & kBlackCell) != 0 ? times : 0;
  covered[1] += (cell & kRedCell) != 0 ? times : 0;
  dots[0] += (cell & kBlackDot) != 0 ? times : 0;
  dots[1] += (cell & kRedDot) != 0 ? times : 0;
}

std::optional<CellCounts> countCells(const Page& page, Model model, const Grid& grid,
                                     const Paper& paper) {
  // Sorting a mark takes about as long as clearing and reading so many cells.
  constexpr uint64_t kCellsWorthAMark = 64;
  const PageCells cells(page, model, grid, paper);
  if (tooMany(cells, kMostCountedCells)) return std::nullopt;
  const auto all = static_cast<uint64_t>(cellsIn(grid, paper));
  const uint64_t marks = cellsOfAllDots(page, grid);
  if (marks < all / kCellsWorthAMark) return countFewCells(cells);
  CellCounts counts = countAllCells(cells);
  counts.touched = all + marks;
  return counts;
}

int64_t cellsIn(const Grid& grid, const Paper& paper) {
  return cellsIn(grid, paper.width) * cellsIn(grid, paper.length);
}

}  // namespace velka::decode
