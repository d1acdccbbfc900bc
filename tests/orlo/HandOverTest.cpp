// How the commands of a page reach the caller.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <vector>

#include "orlo/LiteralPipeline.h"

namespace velka::orlotest {
namespace {

class HandOver : public ::testing::Test {
 protected:
  HandOver() : page_(8, 60) {
    page_.set(0, 40, 0, 0, 0);
    processor_.SetColorCFG(plainConfig());
  }

  int call(unsigned char** output, unsigned int capacity, int dpi = 180, int feed = 1) {
    return processor_.GetOrloPrintCmd(page_.bytes.data(), page_.size(), page_.width, page_.height,
                                      output, capacity, &length_, L"name", dpi, 180, feed);
  }

  static Bytes commands() { return moveY(80) + moveX(0) + block(0x27, padded({{0x80, 0, 0}}, 11)); }

  Bitmap page_;
  COrloProcesser processor_;
  unsigned int length_ = 77;
};

TEST_F(HandOver, ANullOutputReceivesABufferOfExactlyTheCommandsAndNoPageEnd) {
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0), 1);
  EXPECT_EQ(Bytes(output, output + length_), commands());
  EXPECT_EQ(processor_.m_pCmdBuf, nullptr);
  std::free(output);
}

TEST_F(HandOver, ABufferTooSmallReceivesNothingButTheNeed) {
  Bytes buffer(commands().size(), 0xEE);
  unsigned char* output = buffer.data();
  EXPECT_EQ(call(&output, static_cast<unsigned int>(buffer.size() - 1)), 1);
  EXPECT_EQ(length_, commands().size());
  EXPECT_EQ(buffer, Bytes(buffer.size(), 0xEE));
  EXPECT_EQ(commandsOf(processor_), commands());
}

TEST_F(HandOver, ABufferLargeEnoughReceivesTheCommandsAndZeros) {
  for (const size_t spare : {size_t{0}, size_t{2}, size_t{3}, size_t{20}}) {
    COrloProcesser processor;
    processor.SetColorCFG(plainConfig());
    Bytes buffer(commands().size() + spare, 0xEE);
    unsigned char* output = buffer.data();
    unsigned int length = 0;
    EXPECT_EQ(processor.GetOrloPrintCmd(page_.bytes.data(), page_.size(), 8, 60, &output,
                                        static_cast<unsigned int>(buffer.size()), &length, nullptr,
                                        180, 180, 1),
              0);
    EXPECT_EQ(length, commands().size());
    EXPECT_EQ(buffer, commands() + Bytes(spare, 0));
    EXPECT_EQ(processor.m_pCmdBuf, nullptr);
  }
}

TEST_F(HandOver, NoCommandsAreThreeAndALengthOfZero) {
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0, 80), 3);
  EXPECT_EQ(length_, 0U);
  length_ = 77;
  EXPECT_EQ(call(&output, 0, 180, 3), 3);
  EXPECT_EQ(length_, 0U);
  EXPECT_EQ(output, nullptr);
}

TEST_F(HandOver, AnotherSplitValueHasNoCommands) {
  _COLORCFG_ORLO config = plainConfig();
  config.SplitBlackRed = 2;
  processor_.SetColorCFG(config);
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0), 3);
}

TEST_F(HandOver, AWhitePageIsZeroAndTouchesNothing) {
  page_ = Bitmap(8, 60);
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0), 0);
  EXPECT_EQ(output, nullptr);
  EXPECT_EQ(length_, 77U);
}

TEST_F(HandOver, NullPointersAreTwo) {
  unsigned char* output = nullptr;
  EXPECT_EQ(
      processor_.GetOrloPrintCmd(nullptr, 0, 8, 60, &output, 0, &length_, nullptr, 180, 180, 1), 2);
  EXPECT_EQ(call(nullptr, 0), 2);
  EXPECT_EQ(processor_.GetOrloPrintCmd(page_.bytes.data(), page_.size(), 8, 60, &output, 0, nullptr,
                                       nullptr, 180, 180, 1),
            2);
  EXPECT_EQ(length_, 77U);
}

TEST_F(HandOver, PagesWithoutPixelsAreZero) {
  for (const int size : {0, -1, INT_MIN}) {
    unsigned char* output = nullptr;
    EXPECT_EQ(processor_.GetOrloPrintCmd(page_.bytes.data(), page_.size(), 8, size, &output, 0,
                                         &length_, nullptr, 180, 180, 1),
              0);
    EXPECT_EQ(processor_.GetOrloPrintCmd(page_.bytes.data(), page_.size(), size, 60, &output, 0,
                                         &length_, nullptr, 180, 180, 1),
              0);
    EXPECT_EQ(length_, 77U);
  }
}

TEST_F(HandOver, APageThatNoMemoryHoldsHasNoCommands) {
  unsigned char* output = nullptr;
  EXPECT_EQ(processor_.GetOrloPrintCmd(page_.bytes.data(), page_.size(), INT_MAX, INT_MAX, &output,
                                       0, &length_, nullptr, 180, 180, 1),
            3);
  EXPECT_EQ(length_, 0U);
}

TEST_F(HandOver, ResolutionsOfAnySizeAreSafe) {
  for (const int dpi : {INT_MIN, -1, 0, 1, 59, 100000, INT_MAX}) {
    COrloProcesser processor;
    processor.SetColorCFG(plainConfig());
    unsigned char* output = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(processor.GetOrloPrintCmd(page_.bytes.data(), page_.size(), 8, 60, &output, 0,
                                        &length, nullptr, dpi, dpi, 2),
              1);
    EXPECT_GT(length, 3U);
    std::free(output);
  }
}

TEST_F(HandOver, ASecondCallOnTheSameObjectIsSafe) {
  unsigned char* first = nullptr;
  EXPECT_EQ(call(&first, 0), 1);
  const Bitmap other(20, 24);
  unsigned char* second = nullptr;
  EXPECT_EQ(processor_.GetOrloPrintCmd(other.bytes.data(), other.size(), 20, 24, &second, 0,
                                       &length_, nullptr, 180, 180, 1),
            1);
  std::free(first);
  std::free(second);
}

TEST_F(HandOver, ASecondPageOfAnotherSizeStartsWithCleanPlanes) {
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0), 1);
  std::free(output);
  output = nullptr;
  const Bitmap other(8, 61);
  EXPECT_EQ(processor_.GetOrloPrintCmd(other.bytes.data(), other.size(), 8, 61, &output, 0,
                                       &length_, nullptr, 180, 180, 1),
            0);
  EXPECT_EQ(output, nullptr);
}

TEST_F(HandOver, TheSamePageOnTheSameObjectHasTheSameCommands) {
  for (int round = 0; round < 2; ++round) {
    unsigned char* output = nullptr;
    EXPECT_EQ(call(&output, 0), 1);
    EXPECT_EQ(Bytes(output, output + length_), commands());
    std::free(output);
  }
}

// Its planes are as large, so they stay, and their first row ends elsewhere.
TEST_F(HandOver, ASecondPageOfAnotherShapeIsWhiteWhereNothingWasStored) {
  page_ = Bitmap(8, 60);
  page_.set(0, 0, 0, 0, 0);
  unsigned char* output = nullptr;
  EXPECT_EQ(call(&output, 0), 1);
  std::free(output);
  OrloPlane& black = processor_.m_BlackBuf;
  ASSERT_EQ(black.size, 480U);
  std::fill(black.data + black.filled, black.data + black.size, uint8_t{0});
  const Bitmap wide(60, 8);
  EXPECT_TRUE(processor_.MakePlanes(wide.bytes.data(), wide.size(), 60, 8, 180, 1));
  EXPECT_EQ(Bytes(black.data, black.data + 60), Bytes{0} + Bytes(59, 255));
}

TEST(Processor, KeepsItsConfiguration) {
  COrloProcesser processor;
  processor.EnableFaceDet(true);
  EXPECT_TRUE(processor.m_bFaceDet);
  _COLORCFG_ORLO config{};
  config.OutputColorType = 1;
  config.ColorRangeUseFor = 2;
  config.minColorOffset = {3, 4, 5, 6};
  config.maxColorOffset = {7, 8, 9, 10};
  config.solidColor = {11, 12, 13, 14};
  config.SplitBlackRed = 15;
  config.sSpare4 = 16;
  config.sSpare5 = 17;
  config.sSpare6 = 18;
  config.sSpare7 = 19;
  config.BrightnessRed = 20;
  config.sDitherRed = 23;
  config.BrightnessBlack = 24;
  config.sDitherBlack = 27;
  processor.SetColorCFG(config);
  EXPECT_EQ(processor.m_OutputColorType, 1);
  EXPECT_EQ(processor.m_ColorRangeUseFor, 2);
  EXPECT_EQ(processor.m_minColorOffset.rgbGreen, 4);
  EXPECT_EQ(processor.m_maxColorOffset.rgbReserved, 10);
  EXPECT_EQ(processor.m_solidColor.rgbRed, 13);
  EXPECT_EQ(processor.m_SplitBlackRed, 15);
  EXPECT_EQ(processor.m_sSpare4, 16);
  EXPECT_EQ(processor.m_sSpare5, 17);
  EXPECT_EQ(processor.m_sSpare6, 18);
  EXPECT_EQ(processor.m_sSpare7, 19);
  EXPECT_EQ(processor.m_BrightnessRed, 20);
  EXPECT_EQ(processor.m_sDitherRed, 23);
  EXPECT_EQ(processor.m_BrightnessBlack, 24);
  EXPECT_EQ(processor.m_sDitherBlack, 27);
}

TEST(Processor, TellsHowAPageIsPutOnPaper) {
  COrloProcesser processor;
  for (const int feed : {1, 2}) {
    processor.m_SplitBlackRed = 0;
    EXPECT_EQ(processor.GetPrintConstruction(feed), 1);
    processor.m_SplitBlackRed = 1;
    EXPECT_EQ(processor.GetPrintConstruction(feed), 2);
    for (const uint16_t split : {uint16_t{2}, uint16_t{0xFFFF}}) {
      processor.m_SplitBlackRed = split;
      EXPECT_EQ(processor.GetPrintConstruction(feed), 0);
    }
  }
  for (const uint16_t split : {uint16_t{0}, uint16_t{1}})
    for (const int feed : {INT_MIN, -1, 0, 3, INT_MAX}) {
      processor.m_SplitBlackRed = split;
      EXPECT_EQ(processor.GetPrintConstruction(feed), 0);
    }
}

TEST(Processor, StartsEmpty) {
  const COrloProcesser processor;
  for (const OrloPlane* plane : {&processor.m_ImgBuf, &processor.m_BlackBuf, &processor.m_RedBuf}) {
    EXPECT_EQ(plane->data, nullptr);
    EXPECT_EQ(plane->size, 0U);
    EXPECT_FALSE(plane->hasData);
    EXPECT_EQ(plane->left, -1);
    EXPECT_EQ(plane->top, -1);
    EXPECT_EQ(plane->right, -1);
    EXPECT_EQ(plane->bottom, -1);
  }
  EXPECT_EQ(processor.m_pCmdBuf, nullptr);
  EXPECT_EQ(processor.m_PrintAreas.root, nullptr);
}

TEST(Processor, StartsWithAllOptionsAtZero) {
  const COrloProcesser processor;
  EXPECT_EQ(processor.m_OutputColorType | processor.m_ColorRangeUseFor, 0);
  EXPECT_EQ(processor.m_SplitBlackRed, 0);
  EXPECT_FALSE(processor.m_bFaceDet);
  const std::vector<int> options = {
      processor.m_sSpare4,       processor.m_sSpare5,       processor.m_sSpare6,
      processor.m_sSpare7,       processor.m_BrightnessRed, processor.m_ContrastRed,
      processor.m_LevelsRed,     processor.m_sDitherRed,    processor.m_BrightnessBlack,
      processor.m_ContrastBlack, processor.m_LevelsBlack,   processor.m_sDitherBlack};
  EXPECT_EQ(options, std::vector<int>(options.size(), 0));
}

TEST(Processor, StoresPixelsInsideItsPlanesOnly) {
  COrloProcesser processor;
  processor.AddData2BlackBuf(5, {1, 1}, 4);
  EXPECT_EQ(processor.m_BlackBuf.top, -1);
  load(processor, DotPage(4, 3));
  processor.AddData2BlackBuf(5, {1, 2}, 4);
  processor.AddData2BlackBuf(6, {3, 1}, 4);
  processor.AddData2RedBuf(7, {0, 0}, 4);
  for (const tagPOINT outside : {tagPOINT{-1, 0}, tagPOINT{0, -1}, tagPOINT{0, 3},
                                 tagPOINT{INT_MAX, INT_MAX}, tagPOINT{INT_MIN, INT_MIN}})
    processor.AddData2RedBuf(9, outside, 4);
  processor.AddData2ImgBuf(8, {0, 0}, 4);
  EXPECT_EQ(processor.m_BlackBuf.data[9], 5);
  EXPECT_EQ(processor.m_BlackBuf.data[7], 6);
  EXPECT_EQ(processor.m_BlackBuf.left, 1);
  EXPECT_EQ(processor.m_BlackBuf.top, 1);
  EXPECT_EQ(processor.m_BlackBuf.right, 3);
  EXPECT_EQ(processor.m_BlackBuf.bottom, 2);
  EXPECT_EQ(Bytes(processor.m_RedBuf.data, processor.m_RedBuf.data + 12),
            Bytes{7} + Bytes(11, 255));
  EXPECT_EQ(processor.m_RedBuf.bottom, 0);
  EXPECT_EQ(processor.m_ImgBuf.data, nullptr);
  EXPECT_EQ(processor.m_RowWidth, 4U);
}

}  // namespace
}  // namespace velka::orlotest
