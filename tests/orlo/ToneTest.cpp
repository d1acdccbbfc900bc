// Tone tables of the two inks.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>

#include "orlo/PageMaker.h"
#include "reference/ReferenceTone.h"

namespace velka::orlotest {
namespace {

TEST(LightTables, AreTheFormulasAtEverySetting) {
  COrloProcesser processor;
  for (int brightness = -200; brightness <= 200; brightness += 25)
    for (int contrast = -200; contrast <= 200; contrast += 7)
      for (const int index : {1, 2}) {
        processor.SetLightTable(brightness, contrast, index);
        const auto expected = reference::lightTable(brightness, contrast);
        for (size_t v = 0; v < 256; ++v)
          ASSERT_EQ(processor.m_LightTable[index][v], expected.at(v)) << brightness << contrast;
      }
}

TEST(LightTables, OfTheInksAreApartAndIndicesOutsideAreIgnored) {
  COrloProcesser processor;
  processor.SetLightTable(50, 0, 1);
  processor.SetLightTable(-50, 0, 2);
  for (const int index : {-1, 0, 3, INT_MAX, INT_MIN}) processor.SetLightTable(10, 10, index);
  EXPECT_EQ(processor.m_LightTable[1][100], 150);
  EXPECT_EQ(processor.m_LightTable[2][100], 50);
  EXPECT_EQ(processor.m_LightTable[0][100], 0);
}

TEST(LightTables, PureBlackAndPureWhitePass) {
  COrloProcesser processor;
  processor.SetLightTable(20, 0, 1);
  unsigned char r = 0;
  unsigned char g = 0;
  unsigned char b = 0;
  EXPECT_EQ(processor.Light(r, g, b, 1), 1);
  EXPECT_EQ(r + g + b, 0);
  r = g = b = 255;
  processor.Light(r, g, b, 1);
  EXPECT_EQ(r + g + b, 3 * 255);
  r = 10;
  g = 0;
  processor.Light(r, g, b, 1);
  EXPECT_EQ(r, 30);
  EXPECT_EQ(g, 20);
  EXPECT_EQ(b, 255);
  EXPECT_EQ(processor.Light(r, g, b, 9), 1);
  EXPECT_EQ(r, 30);
}

// No bit is set in two of them, none in all of the second's.
TEST(LightTables, ChangeColoursOfWhichNoBitIsCommon) {
  COrloProcesser processor;
  processor.SetLightTable(20, 0, 1);
  for (const auto& [red, green, blue] : {std::array{4, 3, 0}, {0, 4, 3}, {3, 0, 4}, {0, 0, 8}}) {
    auto r = static_cast<unsigned char>(red);
    auto g = static_cast<unsigned char>(green);
    auto b = static_cast<unsigned char>(blue);
    processor.Light(r, g, b, 1);
    EXPECT_EQ(r, red + 20);
    EXPECT_EQ(g, green + 20);
    EXPECT_EQ(b, blue + 20);
  }
}

TEST(LevelTables, OfAHundredAreTheIdentityAndFiftySquares) {
  COrloProcesser processor;
  COLORLEVELSITEM item = {1.0F, 0, 255, 0, 255};
  processor.SetColorLevelsData(&item, 3, 1);
  item.fGamma = 0.5F;
  processor.SetColorLevelsData(&item, 3, 2);
  for (int table = 0; table < 4; ++table) {
    EXPECT_TRUE(processor.m_ColorLevels[1].ready[table]);
    for (int v = 0; v < 256; ++v)
      EXPECT_EQ(processor.m_ColorLevels[1].tables[table][v], v) << table;
    EXPECT_EQ(processor.m_ColorLevels[2].tables[table][128], 64) << table;
  }
}

TEST(LevelTables, OfOneChannelLeaveTheOthersAlone) {
  COrloProcesser processor;
  COLORLEVELSITEM item = {2.0F, 10, 200, 20, 235};
  processor.SetColorLevelsData(&item, 1, 1);
  reference::Levels levels = {2.0F, 10, 200, 20, 235};
  const auto expected = reference::levelsTable(levels);
  const ORLOLEVELSSET& set = processor.m_ColorLevels[1];
  for (size_t v = 0; v < 256; ++v) {
    EXPECT_EQ(set.tables[1][v], expected.at(v));
    EXPECT_EQ(set.tables[0][v], v);
  }
  EXPECT_FALSE(set.ready[0] || set.ready[2] || set.ready[3]);
  EXPECT_TRUE(set.ready[1]);
  EXPECT_EQ(set.items[1].byInLow, 10);
}

TEST(LevelTables, AreAskedOnlyWhenRedAndGreenAreReady) {
  COrloProcesser processor;
  tagRGBQUAD out = {1, 2, 3, 4};
  processor.GetColorLevelsData({100, 100, 100, 0}, &out, 1);
  EXPECT_EQ(out.rgbRed, 3);
  COLORLEVELSITEM item = {0.5F, 0, 255, 0, 255};
  processor.SetColorLevelsData(&item, 3, 1);
  processor.GetColorLevelsData({255, 128, 0, 0}, &out, 1);
  EXPECT_EQ(out.rgbBlue, 255);
  EXPECT_EQ(out.rgbGreen, 64);
  EXPECT_EQ(out.rgbRed, 0);
  EXPECT_EQ(out.rgbReserved, 4);
  processor.InitColorLevelsData(3, 1);
  processor.GetColorLevelsData({9, 9, 9, 0}, &out, 1);
  EXPECT_EQ(out.rgbBlue, 255);
}

TEST(LevelTables, OfEachChannelAreItsOwn) {
  COrloProcesser processor;
  COLORLEVELSITEM item = {1.0F, 0, 255, 0, 0};
  for (const int channel : {0, 1, 2}) {
    item.byOutLow = static_cast<unsigned char>(10 * channel);
    item.byOutHigh = item.byOutLow;
    processor.SetColorLevelsData(&item, channel, 2);
  }
  tagRGBQUAD out = {};
  processor.GetColorLevelsData({100, 100, 100, 0}, &out, 2);
  EXPECT_EQ(out.rgbRed, 0);
  EXPECT_EQ(out.rgbGreen, 10);
  EXPECT_EQ(out.rgbBlue, 20);
}

TEST(LevelTables, IgnoreIndicesOutside) {
  COrloProcesser processor;
  COLORLEVELSITEM item = {0.5F, 0, 255, 0, 255};
  for (const int bad : {-1, 4, INT_MIN, INT_MAX}) {
    processor.SetColorLevelsData(&item, bad, 1);
    processor.SetColorLevelsData(&item, 3, bad);
    processor.InitColorLevelsTable(bad, 1);
    processor.InitColorLevelsData(0, bad);
  }
  processor.SetColorLevelsData(nullptr, 3, 1);
  EXPECT_EQ(processor.m_ColorLevels[1].tables[0][128], 128);
  EXPECT_FALSE(processor.m_ColorLevels[1].ready[0]);
}

TEST(LevelTables, AtIndexZeroAreNeverFilled) {
  COrloProcesser processor;
  COLORLEVELSITEM item = {0.5F, 1, 255, 2, 255};
  processor.SetColorLevelsData(&item, 3, 0);
  processor.InitColorLevelsTable(3, 0);
  processor.InitColorLevelsData(3, 0);
  processor.SetLightTable(50, 50, 0);
  const ORLOLEVELSSET& set = processor.m_ColorLevels[0];
  for (int table = 0; table < 4; ++table) {
    EXPECT_FALSE(set.ready[table]);
    EXPECT_EQ(set.items[table].byInLow, 0);
    for (int v = 0; v < 256; ++v) ASSERT_EQ(set.tables[table][v], 0);
  }
  for (int v = 0; v < 256; ++v) ASSERT_EQ(processor.m_LightTable[0][v], 0);
  tagRGBQUAD out = {1, 2, 3, 4};
  processor.GetColorLevelsData({100, 100, 100, 0}, &out, 0);
  EXPECT_EQ(out.rgbRed, 3);
  unsigned char r = 10;
  unsigned char g = 20;
  unsigned char b = 30;
  EXPECT_EQ(processor.Light(r, g, b, 0), 1);
  EXPECT_EQ(r, 10);
}

TEST(ColourRange, IsNeverEnteredWhereItsBoundsCross) {
  COrloProcesser processor;
  EXPECT_TRUE(processor.IsColorBelongRange({1, 2, 3, 0}, {1, 2, 3, 0}, {1, 2, 3, 0}));
  EXPECT_FALSE(processor.IsColorBelongRange({1, 2, 4, 0}, {1, 2, 3, 0}, {1, 2, 3, 0}));
  EXPECT_FALSE(processor.IsColorBelongRange({1, 2, 3, 0}, {2, 2, 3, 0}, {1, 2, 3, 0}));
}

TEST(OrloRotation, IsTheQuarterTurnOfTheImageCode) {
  COrloProcesser processor;
  unsigned char source[] = {1, 1, 1, 2, 2, 2, 0, 0};  // two pixels and padding
  unsigned char* turned = nullptr;
  int64_t size = 0;
  int64_t width = 0;
  int64_t height = 0;
  ASSERT_TRUE(processor.RotateImg(source, 2, 1, &turned, &size, &width, &height, 24, 1));
  EXPECT_EQ(width, 1);
  EXPECT_EQ(height, 2);
  ASSERT_EQ(size, 8);
  EXPECT_EQ(turned[0], 2);
  EXPECT_EQ(turned[4], 1);
  std::free(turned);
}

TEST(OrloDither, HalvesAtAHundredAndOne) {
  COrloProcesser processor;
  unsigned char in[] = {100, 101};
  unsigned char out[] = {9, 9};
  EXPECT_EQ(processor.Dither(1, in, out, 1, 2, 2, 0, 0, 128), 1);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[1], 255);
}

}  // namespace
}  // namespace velka::orlotest
