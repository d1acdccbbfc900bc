#include <gtest/gtest.h>

#include "DotGrid.h"
#include "decode/Dots.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using decodetest::pagesOf;
using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

constexpr uint8_t kBlackInk = kBlackCell | kBlackDot;
constexpr uint8_t kRedInk = kRedCell | kRedDot;

Grid gridOf(const Page& page) {
  Grid grid;
  grid.add(page);
  return grid;
}

Page pageOf(const Stream& stream) {
  return pagesOf(stream, Model::Standard).at(0);
}

struct Resolution {
  int mode;
  int bytes;
  int64_t cell;  ///< units
  int64_t wide;  ///< of a dot, cells
  int64_t high;
};

TEST(DotGrid, CellsAreSquareAndDivideEveryPitch) {
  const Resolution rows[] = {{32, 3, 20, 3, 1}, {38, 3, 20, 2, 1}, {33, 3, 10, 3, 2},
                             {39, 3, 20, 1, 1}, {40, 3, 10, 1, 2}, {0, 1, 60, 1, 1},
                             {1, 1, 30, 1, 2},  {4, 1, 15, 3, 4},  {6, 1, 20, 2, 3}};
  for (const Resolution& row : rows) {
    Stream data(static_cast<size_t>(row.bytes), 0);
    data[0] = 0x80;
    const Stream stream = ExpectedStream().block(0, row.mode, 1, data).formFeed().bytes();
    const Page page = pageOf(stream);
    const Grid grid = gridOf(page);
    EXPECT_EQ(grid.cell(), row.cell) << row.mode;
    const Area area = inkedArea(page, Model::Standard, grid);
    EXPECT_EQ(area.right, row.wide * row.cell) << row.mode;
    EXPECT_EQ(area.bottom, row.high * row.cell) << row.mode;
    const auto drawn = drawCells(page, Model::Standard, grid, {3600, 3600});
    ASSERT_TRUE(drawn.has_value());
    int64_t inked = 0;
    for (const uint8_t cell : drawn->cells) inked += (cell & kBlackCell) != 0 ? 1 : 0;
    EXPECT_EQ(inked, row.wide * row.high) << row.mode;
  }
}

TEST(DotGrid, ASecondPassARowLowerMakesRowsHalfAsHigh) {
  const Stream column = {0x80, 0, 0};
  const Stream stream = ExpectedStream()
                            .block(0, 40, 1, column)
                            .unit(10)
                            .down(1)
                            .block(1, 40, 1, column)
                            .formFeed()
                            .bytes();
  const Page page = pageOf(stream);
  const auto drawn = drawCells(page, Model::Standard, gridOf(page), {20, 30});
  ASSERT_TRUE(drawn.has_value());
  EXPECT_EQ(drawn->width, 2);
  EXPECT_EQ(drawn->height, 3);
  EXPECT_EQ(drawn->cells, (Stream{kBlackInk, 0, kRedInk, 0, 0, 0}));
}

// The second pass struck nothing, but the paper moved on to it: rows are 1/360 inch.
TEST(DotGrid, AMoveToRowsThatStayWhiteMakesRowsHalfAsHighToo) {
  const Stream column = {0x80, 0, 0};
  const auto drawnRows = [&](const ExpectedStream& stream) {
    const Stream bytes = ExpectedStream(stream).formFeed().bytes();
    const Page page = pageOf(bytes);
    return drawCells(page, Model::Standard, gridOf(page), {10, 30})->cells;
  };
  const auto row100 = ExpectedStream().block(0, 40, 1, column).unit(10).down(1);
  EXPECT_EQ(drawnRows(row100), (Stream{kBlackInk, 0, 0}));
  const auto row101 = ExpectedStream(row100).toX(0).block(0, 40, 1, column);
  EXPECT_EQ(drawnRows(row101), (Stream{kBlackInk, kBlackInk, 0}));
  // Rows of 1/180 inch are as high as ever.
  const auto coarse = ExpectedStream().block(0, 40, 1, column).unit(10).down(2);
  EXPECT_EQ(drawnRows(coarse), (Stream{kBlackInk, kBlackCell, 0}));
}

TEST(DotGrid, DotsKeepTheirHeightBesideAPageOfFinerRows) {
  const Stream column = {0x80, 0, 0};
  const Stream fine = ExpectedStream()
                          .block(0, 40, 1, column)
                          .unit(10)
                          .down(1)
                          .block(0, 40, 1, column)
                          .formFeed()
                          .bytes();
  const Stream coarse = ExpectedStream().block(0, 39, 1, column).formFeed().bytes();
  Grid both = gridOf(pageOf(fine));
  both.add(pageOf(coarse));
  EXPECT_EQ(both.cell(), 10);
  EXPECT_EQ(dotHeight(pageOf(fine), both), 1);
  EXPECT_EQ(dotHeight(pageOf(coarse), both), 2);
  const auto drawn = drawCells(pageOf(coarse), Model::Standard, both, {20, 20});
  ASSERT_TRUE(drawn.has_value());
  EXPECT_EQ(drawn->cells, (Stream{kBlackInk, kBlackCell, kBlackCell, kBlackCell}));
}

TEST(DotGrid, ThePaperGrowsWithThePrintUnlessItsWidthIsFixed) {
  const Stream stream =
      ExpectedStream().start(1).toX(60).block(0, 39, 1, {0, 0, 0xFF}).formFeed().bytes();
  const Page page = pageOf(stream);
  const Paper grown = paperOf(page, Model::Standard, gridOf(page), {100, false});
  EXPECT_EQ(grown.width, 3620);
  EXPECT_EQ(grown.length, 600);
  EXPECT_EQ(paperOf(page, Model::Standard, gridOf(page), {4000, false}).width, 4000);
  EXPECT_EQ(paperOf(page, Model::Standard, gridOf(page), {100, true}).width, 100);
}

TEST(DotGrid, DotsBesideTheAreaAreCountedAndNotDrawn) {
  const Stream stream = ExpectedStream()
                            .unit(10)
                            .down(-2)
                            .block(0, 39, 1, {0xC0, 0, 0})
                            .toX(60)
                            .block(1, 39, 1, {0x40, 0, 0})
                            .formFeed()
                            .bytes();
  const Page page = pageOf(stream);
  const auto drawn = drawCells(page, Model::Standard, gridOf(page), {40, 40});
  ASSERT_TRUE(drawn.has_value());
  EXPECT_EQ(drawn->outside, 2U);
  EXPECT_EQ(drawn->cells, (Stream{kBlackInk, 0, 0, 0}));
}

TEST(DotGrid, UnitsFinerThanAnyPrinterAreRoundedDown) {
  const Stream stream =
      ExpectedStream().unit(1).down(13).block(0, 40, 1, {0x80, 0, 0}).formFeed().bytes();
  const Page page = pageOf(stream);
  const Grid grid = gridOf(page);
  EXPECT_EQ(grid.cell(), 10);
  const auto drawn = drawCells(page, Model::Standard, grid, {10, 30});
  ASSERT_TRUE(drawn.has_value());
  EXPECT_EQ(drawn->cells, (Stream{0, kBlackInk, 0}));
}

TEST(DotGrid, AreasWithTooManyCellsAreRefused) {
  const Page page;
  const Grid grid;
  EXPECT_TRUE(drawCells(page, Model::Standard, grid, {3600, 3600}).has_value());
  EXPECT_FALSE(drawCells(page, Model::Standard, grid, {INT64_C(1) << 40, INT64_C(1) << 40}));
  EXPECT_FALSE(countCells(page, Model::Standard, grid, {INT64_C(1) << 40, INT64_C(1) << 40}));
  const auto nothing = drawCells(page, Model::Standard, grid, {-5, 100});
  ASSERT_TRUE(nothing.has_value());
  EXPECT_TRUE(nothing->cells.empty());
}

TEST(DotGrid, CountsCellsTheSameOnLargeAndOnSmallForms) {
  // The same ink twice, once over itself; red beside it.
  const Stream stream = ExpectedStream()
                            .block(0, 32, 2, {0xFF, 0, 0, 0x80, 0, 0})
                            .add({0x0D})
                            .block(0, 32, 1, {0xFF, 0, 0})
                            .toX(9)
                            .block(1, 32, 1, {0x81, 0, 0})
                            .formFeed()
                            .bytes();
  const Page page = pageOf(stream);
  const Grid grid = gridOf(page);
  for (const int64_t side : {720, 36000}) {
    const auto counts = countCells(page, Model::Standard, grid, {side, side});
    ASSERT_TRUE(counts.has_value());
    EXPECT_EQ(counts->covered, (std::array<uint64_t, 2>{27, 6})) << side;
    EXPECT_EQ(counts->dots, (std::array<uint64_t, 2>{9, 2})) << side;
  }
}

}  // namespace
}  // namespace velka::decode
