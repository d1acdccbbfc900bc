// Pages drawn some rows at a time, and the shortcuts to their extent, against every
// dot of random pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "PageCells.h"
#include "decode/Dots.h"

namespace velka::decode {
namespace {

using Cells = std::vector<uint8_t>;

constexpr Model kModels[] = {Model::Standard, Model::OrloFront, Model::OrloBack};

// Blocks at random places, a few of them beside the paper; the data outlives the page.
struct RandomPage {
  std::vector<Cells> data;
  Page page;
  Grid grid;
  Paper paper;

  RandomPage(std::mt19937& random, Model model) {
    constexpr uint8_t kCodes[] = {0, 1, 4, 6, 32, 33, 38, 39, 40, 41};
    const size_t blocks = random() % 12;
    const auto mode =
        findMode(kCodes[random() % std::size(kCodes)], isOrlo(model)).value_or(*findMode(40, true));
    data.reserve(blocks);
    const int64_t step = random() % 4 == 0 ? 7 : 10;
    for (size_t i = 0; i < blocks; ++i) {
      Cells columns(mode.bytesPerColumn * (1 + random() % 30), 0);
      if (random() % 6 != 0)
        for (uint8_t& byte : columns) byte = random() % 3 == 0 ? uint8_t(random()) : uint8_t{0};
      data.push_back(columns);
      page.blocks.push_back({step * (int64_t(random() % 300) - 60),
                             step * (int64_t(random() % 900) - 90), mode, int32_t(random() % 2),
                             data.back(), 0});
    }
    page.lines = int32_t(random() % 3);
    grid.add(page);
    paper = {int64_t(random() % 3000), int64_t(random() % 9000)};
  }
};

bool isOn(const Paper& paper, int64_t x, int64_t y) {
  return x >= 0 && y >= 0 && x < paper.width && y < paper.length;
}

// Cell by cell, dot by dot.
Cells literalCells(const RandomPage& drawn, Model model, int64_t width, int64_t height) {
  Cells cells(static_cast<size_t>(width * height), 0);
  const int64_t cell = drawn.grid.cell();
  for (const Block& block : drawn.page.blocks)
    forEachDot(block, model, [&](Ink ink, int64_t x, int64_t y) {
      if (!isOn(drawn.paper, x, y)) return;
      const uint8_t cover = ink == Ink::Red ? kRedCell : kBlackCell;
      const uint8_t start = ink == Ink::Red ? kRedDot : kBlackDot;
      for (int64_t row = 0; row < dotHeight(drawn.page, drawn.grid); ++row)
        for (int64_t column = 0; column < dotWidth(block, drawn.grid); ++column) {
          const int64_t atX = x / cell + column;
          const int64_t atY = y / cell + row;
          if (atX >= width || atY >= height) continue;
          cells[static_cast<size_t>(atY * width + atX)] |=
              static_cast<uint8_t>(cover | (row + column == 0 ? start : 0));
        }
    });
  return cells;
}

template <typename Judge>
void onRandomPages(Judge judge) {
  std::mt19937 random(20240901);  // NOLINT: the same pages each time
  for (int run = 0; run < 600 && !::testing::Test::HasFailure(); ++run) {
    const Model model = kModels[run % 3];
    const RandomPage drawn(random, model);
    SCOPED_TRACE(run);
    judge(drawn, model, random);
  }
}

TEST(PageCells, StripsOfAnyHeightTogetherAreThePage) {
  size_t inked = 0;
  onRandomPages([&](const RandomPage& drawn, Model model, std::mt19937& random) {
    const PageCells cells(drawn.page, model, drawn.grid, drawn.paper);
    const Cells expected = literalCells(drawn, model, cells.width(), cells.height());
    Cells found;
    for (int64_t top = 0; top < cells.height();) {
      const int64_t rows = std::min(cells.height() - top, int64_t(1 + random() % 40));
      Cells strip(static_cast<size_t>(rows * cells.width()), 0xAA);
      cells.draw(top, strip);
      const bool white = std::ranges::all_of(strip, [](uint8_t cell) { return cell == 0; });
      EXPECT_TRUE(white || !cells.isBlank(top, rows));
      found.insert(found.end(), strip.begin(), strip.end());
      top += rows;
    }
    EXPECT_TRUE(found == expected);
    inked += static_cast<size_t>(std::ranges::count_if(found, [](uint8_t c) { return c != 0; }));
  });
  EXPECT_GT(inked, 100000U);
}

TEST(PageCells, RowsFarFromAnyBlockAreBlank) {
  const Cells column = {0xFF, 0xFF, 0xFF};
  Page page;
  page.blocks.push_back({0, 1000, *findMode(39, false), 0, column, 0});
  Grid grid;
  grid.add(page);
  const PageCells cells(page, Model::Standard, grid, {100, 1000000});
  EXPECT_TRUE(cells.isBlank(0, 50));
  EXPECT_FALSE(cells.isBlank(0, 51));
  EXPECT_FALSE(cells.isBlank(73, 10));
  EXPECT_TRUE(cells.isBlank(74, 40000));
}

TEST(PageCells, DotsBesideThePaperAreCountedOneByOne) {
  uint64_t all = 0;
  onRandomPages([&](const RandomPage& drawn, Model model, std::mt19937&) {
    uint64_t expected = 0;
    for (const Block& block : drawn.page.blocks)
      forEachDot(block, model,
                 [&](Ink, int64_t x, int64_t y) { expected += isOn(drawn.paper, x, y) ? 0 : 1; });
    EXPECT_EQ(dotsOutside(drawn.page, model, drawn.paper), expected);
    all += expected;
  });
  EXPECT_GT(all, 1000U);
}

TEST(PageCells, TheInkedAreaHoldsEveryDotAndNoMore) {
  onRandomPages([](const RandomPage& drawn, Model model, std::mt19937&) {
    Area expected{INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
    const int64_t cell = drawn.grid.cell();
    for (const Block& block : drawn.page.blocks)
      forEachDot(block, model, [&](Ink, int64_t x, int64_t y) {
        expected.left = std::min(expected.left, x);
        expected.top = std::min(expected.top, y);
        expected.right = std::max(expected.right, x + dotWidth(block, drawn.grid) * cell);
        expected.bottom = std::max(expected.bottom, y + dotHeight(drawn.page, drawn.grid) * cell);
      });
    if (expected.empty()) expected = {};
    const Area found = inkedArea(drawn.page, model, drawn.grid);
    EXPECT_EQ(found.left, expected.left);
    EXPECT_EQ(found.top, expected.top);
    EXPECT_EQ(found.right, expected.right);
    EXPECT_EQ(found.bottom, expected.bottom);
  });
}

}  // namespace
}  // namespace velka::decode
