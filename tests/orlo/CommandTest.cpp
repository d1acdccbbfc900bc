// Single commands and builders.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "orlo/PageMaker.h"

namespace velka::orlotest {
namespace {

TEST(OrloCommands, ColourModesCountFromOne) {
  COrloProcesser processor;
  for (const int mode : {1, 2, 3}) processor.SetColorMode(mode);
  EXPECT_EQ(commandsOf(processor), (Bytes{0x1B, 0x72, 0x00, 0x1B, 0x72, 0x01, 0x1B, 0x72, 0x02}));
}

TEST(OrloCommands, PaperFeedModesAreLetters) {
  COrloProcesser processor;
  for (const int mode : {1, 2, 3, INT_MIN}) processor.SetPaperFeedMode(mode);
  EXPECT_EQ(commandsOf(processor),
            (Bytes{0x1B, 0x19, 0x46, 0x1B, 0x19, 0x42, 0x1B, 0x19, 0x00, 0x1B, 0x19, 0x00}));
}

TEST(OrloCommands, VerticalMovesGoBothWays) {
  COrloProcesser processor;
  EXPECT_EQ(processor.MoveToYPosFromCur(100, 180), 0);
  EXPECT_EQ(processor.MoveToYPosFromCur(-1, 360), 0);
  EXPECT_EQ(commandsOf(processor), moveY(200) + moveY(-1));
}

TEST(OrloCommands, AVerticalMoveOfNothingIsItsUnitAlone) {
  COrloProcesser processor;
  EXPECT_EQ(processor.MoveToYPosFromCur(0, 180), 0);
  EXPECT_EQ(commandsOf(processor), (Bytes{0x1B, 0x28, 0x55, 0x01, 0x00, 0x0A}));
}

TEST(OrloCommands, HorizontalPositionsAreInSixtiethsOfAnInch) {
  COrloProcesser processor;
  EXPECT_EQ(processor.MoveToXPosition(1000, 360), 0);
  EXPECT_EQ(commandsOf(processor), moveX(166));
}

TEST(OrloCommands, MovesWithoutAResolutionAreSafe) {
  COrloProcesser processor;
  EXPECT_EQ(processor.MoveToXPosition(5, 0), 0);
  EXPECT_EQ(processor.MoveToYPosFromCur(INT_MIN, 0), 0);
  EXPECT_EQ(processor.MoveToYPosFromCur(INT_MIN, -360), 0);
  EXPECT_EQ(commandsOf(processor).size(), 10U + 6U + 6U);
}

TEST(OrloCommands, ABlockNamesItsColumnsAndNoColour) {
  COrloProcesser processor;
  tagRECT run = {10, 0, 266, 24};
  Bytes data = {1, 2, 3};
  EXPECT_TRUE(processor.GetBlockDataCmd(0x28, run, data.data(), 3));
  EXPECT_EQ(commandsOf(processor), (Bytes{0x1B, 0x2A, 0x28, 0x01, 0x01, 1, 2, 3}));
  EXPECT_FALSE(processor.GetBlockDataCmd(0x28, run, nullptr, 3));
}

TEST(OrloCommands, AColumnWithoutAResolutionStandsWhereTheLowestIntegerSays) {
  for (const int column : {0, 5}) {
    COrloProcesser processor;
    processor.MoveToXPosition(column, 0);
    EXPECT_EQ(Bytes(processor.m_pCmdBuf, processor.m_pCmdBuf + processor.m_dwCmdLen),
              (Bytes{0x1B, 0x28, 0x55, 0x01, 0x00, 0x3C, 0x1B, 0x24, 0, 0}));
  }
}

TEST(OrloCommands, BuildersKeepTheContractOfTheStandardModel) {
  COrloProcesser processor;
  unsigned char* buffer = nullptr;
  unsigned int capacity = 0;
  unsigned int length = 0;
  ASSERT_TRUE(processor.GetSetUnitCmd(10, &buffer, &capacity, &length));
  EXPECT_EQ(Bytes(buffer, buffer + length), (Bytes{0x1B, 0x28, 0x55, 0x01, 0x00, 0x0A}));
  EXPECT_FALSE(processor.GetRelativeYMoveCmd(360, 300, &buffer, &capacity, &length));
  EXPECT_EQ(length, 8U);
  ASSERT_TRUE(processor.GetXMoveCmd(2, 6.0F, -60, &buffer, &capacity, &length));
  EXPECT_EQ(Bytes(buffer, buffer + length), (Bytes{0x1B, 0x5C, 0xF6, 0xFF}));
  EXPECT_FALSE(processor.GetXMoveCmd(3, 6.0F, 0, &buffer, &capacity, &length));
  std::free(buffer);
}

TEST(OrloCommands, TheVerticalMoveBuilderTakesDistancesBeyond32Bits) {
  COrloProcesser processor;
  unsigned char* buffer = nullptr;
  unsigned int capacity = 0;
  unsigned int length = 0;
  ASSERT_TRUE(processor.GetRelativeYMoveCmd(360, 300, &buffer, &capacity, &length));
  EXPECT_EQ(Bytes(buffer, buffer + length), (Bytes{0x0D, 0x1B, 0x28, 0x76, 2, 0, 0x2C, 0x01}));
  std::free(buffer);
  buffer = nullptr;
  ASSERT_TRUE(processor.GetRelativeYMoveCmd(360, INT64_MIN, &buffer, &capacity, &length));
  EXPECT_EQ(buffer[0], 0x0D);
  EXPECT_EQ(length % 7, 1U);
  std::free(buffer);
}

TEST(OrloCommands, GrowingKeepsTheBytesAndFillsTheRest) {
  COrloProcesser processor;
  unsigned char* buffer = nullptr;
  unsigned int size = 0;
  ASSERT_TRUE(processor.GrowBMPMem(&buffer, &size, 2, 0x1AA));
  ASSERT_TRUE(processor.GrowBMPMem(&buffer, &size, 1, 7));
  EXPECT_EQ(Bytes(buffer, buffer + size), (Bytes{0xAA, 0xAA, 7}));
  EXPECT_FALSE(processor.GrowBMPMem(&buffer, &size, UINT_MAX, 0));
  EXPECT_EQ(size, 3U);
  std::free(buffer);
}

}  // namespace
}  // namespace velka::orlotest
