#include <gtest/gtest.h>

#include "reference/ExpectedStream.h"
#include "reference/HandmadePage.h"

namespace velka::reference {
namespace {

using Page = HandmadePage;

TEST(ReferenceBlock, TenColumnsWithBlankEndsGiveSix) {
  Page page(24, 24, 10);
  for (int column = 2; column <= 6; ++column) {
    for (int row = 0; row < 24; ++row) {
      page.dot(black, row, column);
    }
  }
  Bytes data(6, 0);
  append(data, columnsOf(4, {0xFF, 0xFF, 0xFF}));
  const Block block = page.pack(1);
  EXPECT_EQ(block.leadingSkip, 0U);
  EXPECT_EQ(block.command, ExpectedStream().block(0, 39, 6, data).bytes());
}

TEST(ReferenceBlock, OnlyTheFirstBlankColumnLeadsWithThreeBytesAColumn) {
  Page page(24, 24, 10);
  page.resolution(60, 180);
  page.dot(black, 0, 5);
  const Block block = page.pack(1);
  EXPECT_EQ(block.leadingSkip, 1U);
  // 10 - 1 - 4 trailing - 1 leading = 4 columns: 1 to 4, the dot itself is dropped.
  EXPECT_EQ(block.command, ExpectedStream().block(0, 32, 4, Bytes(12, 0)).bytes());
}

TEST(ReferenceBlock, EveryBlankColumnLeadsWithOneByteAColumn) {
  Page page(24, 24, 10);
  page.resolution(60, 60);
  for (int column = 4; column <= 7; ++column) {
    page.dot(red, 7, column);
    page.dot(red, 8, column);  // below the eight dots of this mode
  }
  const Block block = page.pack(2);
  EXPECT_EQ(block.leadingSkip, 4U);
  EXPECT_EQ(block.command, ExpectedStream().block(1, 0, 3, columnsOf(3, {0x01})).bytes());
}

TEST(ReferenceBlock, TheSkipIsAWholeNumberOfSteps) {
  Page page(24, 24, 10);
  page.resolution(120, 60);
  page.inkRow(black, 0);
  for (int column = 0; column < 5; ++column) {
    page.planes.black.at(static_cast<size_t>(column)) = 255;
  }
  const Block block = page.pack(1);
  EXPECT_EQ(block.leadingSkip, 4U);
  EXPECT_EQ(block.command, ExpectedStream().block(0, 1, 5, {0x00, 0x80, 0x80, 0x80, 0x80}).bytes());
}

TEST(ReferenceBlock, ABlankBandHasNoCommand) {
  Page page(24);
  EXPECT_TRUE(page.pack(1).command.empty());
  EXPECT_TRUE(page.pack(2).command.empty());
}

TEST(ReferenceBlock, TheTwoPassesTakeEvenAndOddRows) {
  Page page(48, 48);
  page.resolution(360, 360);
  page.inkRow(black, 0);
  page.inkRow(black, 3);
  page.inkRow(black, 46);
  page.inkRow(black, 47);
  EXPECT_EQ(page.pack(1, 0, 0).command,
            ExpectedStream().block(0, 40, 3, columnsOf(3, {0x80, 0, 0x01})).bytes());
  EXPECT_EQ(page.pack(1, 0, 1).command,
            ExpectedStream().block(0, 40, 3, columnsOf(3, {0x40, 0, 0x01})).bytes());
}

TEST(ReferenceBlock, ABandPastTheLastRowLosesItsColumns) {
  Page page(23);
  page.inkRow(black, 0);
  EXPECT_TRUE(page.pack(1).command.empty());
  Page interleaved(47, 48);
  interleaved.resolution(360, 360);
  interleaved.inkRow(black, 0);
  interleaved.inkRow(black, 1);
  EXPECT_FALSE(interleaved.pack(1, 0, 0).command.empty());
  EXPECT_TRUE(interleaved.pack(1, 0, 1).command.empty());
}

TEST(ReferenceBlock, SeventyTwoPinsReachIntoTheBandsBelow) {
  Page page(72);
  page.setting.options.sHeadPins = 72;
  page.inkRow(black, 71);
  const Bytes column = {0, 0, 0, 0, 0, 0, 0, 0, 0x01};
  EXPECT_EQ(page.pack(1, 0).command,
            ExpectedStream().block(0, 41, 3, columnsOf(3, column)).bytes());
  EXPECT_TRUE(page.pack(1, 1).command.empty());
}

}  // namespace
}  // namespace velka::reference
