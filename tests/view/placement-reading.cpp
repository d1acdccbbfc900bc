// placement-reading MODEL FILE.prn: reads the fields of the placement page on the paper
// of a stream, as who printed it would: A or B, and what was measured, in dots.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "DotGrid.h"
#include "Files.h"
#include "PageReader.h"

namespace {

using namespace velka;
using decode::DotGrid;

// Longer than any stroke of a letter, shorter than the bars.
constexpr int64_t kBar = 250;

int64_t longestRun(const DotGrid& dots, int64_t row, uint8_t ink) {
  int64_t longest = 0;
  int64_t run = 0;
  for (int64_t column = 0; column < dots.width; ++column) {
    run = (dots.at(column, row) & ink) != 0 ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

// Lines down that cross a row, however many columns wide.
int64_t linesAcross(const DotGrid& dots, int64_t row, uint8_t ink) {
  int64_t lines = 0;
  bool before = false;
  for (int64_t column = 0; column < dots.width; ++column) {
    const bool inked = (dots.at(column, row) & ink) != 0;
    lines += inked && !before ? 1 : 0;
    before = inked;
  }
  return lines;
}

// Rows that hold a bar of one ink, without a row between them that does not.
struct Bar {
  int64_t top;
  int64_t end;
  int64_t width;
};

std::vector<Bar> barsOf(const DotGrid& dots, uint8_t ink) {
  std::vector<Bar> bars;
  for (int64_t row = 0; row < dots.height; ++row) {
    const int64_t width = longestRun(dots, row, ink);
    if (width < kBar) continue;
    if (bars.empty() || bars.back().end != row) bars.push_back({row, row, 0});
    bars.back().end = row + 1;
    bars.back().width = std::max(bars.back().width, width);
  }
  return bars;
}

void tell(int field, bool asMeant, const std::string& measured) {
  std::printf("%d %c %s\n", field, asMeant ? 'A' : 'B', measured.c_str());
}

int readFields(const DotGrid& dots) {
  const std::vector<Bar> red = barsOf(dots, decode::kRedCell);
  const std::vector<Bar> black = barsOf(dots, decode::kBlackCell);
  if (red.empty() || black.size() != 5) {
    (void)std::fprintf(stderr, "%zu red and %zu black bars\n", red.size(), black.size());
    return 1;
  }
  const int64_t gap = black[0].top - red[0].end;
  tell(1, gap == 0, std::to_string(gap));
  const int64_t lines = linesAcross(dots, (black[1].end + black[2].top) / 2, decode::kBlackCell);
  tell(2, lines == 2, std::to_string(lines));
  constexpr int64_t kLadder = int64_t{24} * 24;
  const int64_t height = black[4].end - black[3].top;
  tell(3, std::abs(height - kLadder) <= 2, std::to_string(height));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto model = decode::modelNamed(argc == 3 ? argv[1] : "");
  std::vector<uint8_t> stream;
  if (!model || view::readFile(argv[2], stream)) return 2;
  decode::PageReader reader(stream, *model);
  const auto page = reader.next();
  if (!page || reader.next() || reader.fault()) return 1;
  decode::Grid grid;
  grid.add(*page);
  const auto dots =
      decode::drawCells(*page, *model, grid, decode::paperOf(*page, *model, grid, {0, false}));
  return dots ? readFields(*dots) : 1;
}
