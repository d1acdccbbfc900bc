#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "BmpProcessing.h"
#include "LiteralImaging.h"

namespace {

constexpr COLORLEVELSITEM kNeutral{1.0F, 0, 255, 0, 255};

void expectIdentity(const uint8_t (&row)[256]) {
  for (int v = 0; v < 256; ++v) {
    ASSERT_EQ(row[v], v);
  }
}

CBmpProcessing withItem(COLORLEVELSITEM item, int index = 3) {
  CBmpProcessing bmp;
  bmp.SetColorLevelsData(&item, index);
  return bmp;
}

TEST(Levels, FreshInstanceChangesNothing) {
  CBmpProcessing bmp;
  tagRGBQUAD out{1, 2, 3, 4};
  bmp.GetColorLevelsData({9, 8, 7, 6}, &out);
  EXPECT_EQ(out.rgbBlue, 1);
  EXPECT_EQ(out.rgbGreen, 2);
  EXPECT_EQ(out.rgbRed, 3);
  EXPECT_EQ(out.rgbReserved, 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(bmp.m_bLevelsReady[i], 0);
    EXPECT_EQ(bmp.m_Levels[i].fGamma, 1.0F);
    EXPECT_EQ(bmp.m_Levels[i].byInHigh, 255);
    expectIdentity(bmp.m_LevelsTable[i]);
  }
}

TEST(Levels, NeutralItemForAllChannelsIsTheIdentityAndSetsAllFlags) {
  const CBmpProcessing bmp = withItem(kNeutral);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(bmp.m_bLevelsReady[i], 1);
    expectIdentity(bmp.m_LevelsTable[i]);
  }
}

TEST(Levels, GammaTwoLiftsMidGreyTo181) {
  EXPECT_EQ(withItem({2.0F, 0, 255, 0, 255}).m_LevelsTable[0][128], 181);
}

TEST(Levels, InputRangeIsStretched) {
  const CBmpProcessing bmp = withItem({1.0F, 50, 200, 0, 255});
  for (int v = 0; v <= 50; ++v) {
    EXPECT_EQ(bmp.m_LevelsTable[1][v], 0);
  }
  for (int v = 200; v < 256; ++v) {
    EXPECT_EQ(bmp.m_LevelsTable[1][v], 255);
  }
  EXPECT_EQ(bmp.m_LevelsTable[1][125], 128);
}

TEST(Levels, OutputRangeIsNarrowed) {
  const CBmpProcessing bmp = withItem({1.0F, 0, 255, 20, 235});
  EXPECT_EQ(bmp.m_LevelsTable[2][0], 20);
  EXPECT_EQ(bmp.m_LevelsTable[2][255], 235);
}

TEST(Levels, MasterRowStaysTheIdentity) {
  expectIdentity(withItem({0.3F, 0, 255, 0, 255}).m_LevelsTable[3]);
}

TEST(Levels, SingleChannelTouchesItsOwnRowAndFlagOnly) {
  const CBmpProcessing bmp = withItem({2.0F, 0, 255, 0, 255}, 1);
  EXPECT_EQ(bmp.m_LevelsTable[1][128], 181);
  expectIdentity(bmp.m_LevelsTable[0]);
  expectIdentity(bmp.m_LevelsTable[2]);
  EXPECT_EQ(bmp.m_bLevelsReady[0], 0);
  EXPECT_EQ(bmp.m_bLevelsReady[1], 1);
  EXPECT_EQ(bmp.m_bLevelsReady[2], 0);
  EXPECT_EQ(bmp.m_bLevelsReady[3], 0);
}

TEST(Levels, ColourIsMappedPerChannelOnceRedAndGreenAreReady) {
  CBmpProcessing bmp = withItem({2.0F, 0, 255, 0, 255}, 0);
  tagRGBQUAD out{1, 2, 3, 4};
  bmp.GetColorLevelsData({10, 20, 128, 0}, &out);
  EXPECT_EQ(out.rgbRed, 3);
  COLORLEVELSITEM green{1.0F, 0, 255, 255, 0};
  bmp.SetColorLevelsData(&green, 1);
  bmp.GetColorLevelsData({10, 20, 128, 0}, &out);
  EXPECT_EQ(out.rgbRed, 181);
  EXPECT_EQ(out.rgbGreen, 235);
  EXPECT_EQ(out.rgbBlue, 10);
  EXPECT_EQ(out.rgbReserved, 4);
  bmp.GetColorLevelsData({10, 20, 128, 0}, nullptr);
}

TEST(Levels, SettingAgainStartsFromTheIdentity) {
  CBmpProcessing bmp = withItem({2.0F, 0, 255, 0, 255});
  COLORLEVELSITEM again{2.0F, 0, 255, 0, 255};
  bmp.SetColorLevelsData(&again, 3);
  EXPECT_EQ(bmp.m_LevelsTable[0][128], 181);
}

TEST(Levels, BuildingTwiceWithoutResetAppliesTheCurveTwice) {
  CBmpProcessing bmp = withItem({2.0F, 0, 255, 0, 255}, 0);
  bmp.InitColorLevelsTable(0);
  EXPECT_EQ(bmp.m_LevelsTable[0][128], 215);
}

TEST(Levels, ResetMakesEverythingNeutralAndNotReady) {
  CBmpProcessing bmp = withItem({2.0F, 1, 2, 3, 4});
  bmp.InitColorLevelsData(3);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(bmp.m_bLevelsReady[i], 0);
    expectIdentity(bmp.m_LevelsTable[i]);
  }
  EXPECT_EQ(bmp.m_Levels[3].fGamma, 1.0F);
  EXPECT_EQ(bmp.m_Levels[3].byOutHigh, 255);
}

TEST(Levels, NullItemsAndUnknownChannelsAreIgnored) {
  CBmpProcessing bmp = withItem({2.0F, 0, 255, 0, 255});
  COLORLEVELSITEM other{0.5F, 0, 255, 0, 255};
  bmp.SetColorLevelsData(nullptr, 3);
  for (const int index : {-1, 4, std::numeric_limits<int>::max()}) {
    bmp.SetColorLevelsData(&other, index);
    bmp.InitColorLevelsData(index);
    bmp.InitColorLevelsTable(index);
  }
  EXPECT_EQ(bmp.m_LevelsTable[0][128], 181);
  EXPECT_EQ(bmp.m_bLevelsReady[3], 1);
}

TEST(Levels, GammaZeroLeavesOnlyWhite) {
  const CBmpProcessing bmp = withItem({0.0F, 0, 255, 0, 255});
  for (int v = 0; v < 255; ++v) {
    EXPECT_EQ(bmp.m_LevelsTable[0][v], 0);
  }
  EXPECT_EQ(bmp.m_LevelsTable[0][255], 255);
}

TEST(Levels, EqualInputPointsMakeAStep) {
  const CBmpProcessing bmp = withItem({1.0F, 100, 100, 0, 255});
  EXPECT_EQ(bmp.m_LevelsTable[0][100], 0);
  EXPECT_EQ(bmp.m_LevelsTable[0][101], 255);
}

TEST(Levels, NonsenseItemsAreDefined) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(withItem({nan, 0, 255, 0, 255}).m_LevelsTable[0][128], 1);
  EXPECT_EQ(withItem({-1.0F, 0, 255, 0, 255}).m_LevelsTable[0][255], 255);
  EXPECT_EQ(withItem({1.0F, 200, 50, 0, 255}).m_LevelsTable[0][10], 0);
}

// What a curve of negative gamma makes too large for an integer is the lowest one, and
// rounding leaves 1 in its low byte.
TEST(Levels, NegativeGammaWrapsWhatFitsNoInteger) {
  const CBmpProcessing steep = withItem({-0.03F, 0, 255, 0, 255});
  EXPECT_EQ(steep.m_LevelsTable[0][0], 1);
  EXPECT_EQ(steep.m_LevelsTable[0][100], 1);
  EXPECT_EQ(steep.m_LevelsTable[0][255], 255);
  for (int hundredths = -300; hundredths < 0; ++hundredths) {
    const float gamma = static_cast<float>(hundredths) / 100.0F;
    const auto expected = velka::literal::levelsTable(gamma, 0, 255, 0, 255);
    const CBmpProcessing bmp = withItem({gamma, 0, 255, 0, 255});
    for (size_t v = 0; v < 256; ++v)
      ASSERT_EQ(bmp.m_LevelsTable[1][v], expected[v]) << hundredths << " " << v;
  }
}

TEST(Levels, RandomItemsGiveTheTableOfTheFormula) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    const auto byte = [&] { return static_cast<uint8_t>(random()); };
    COLORLEVELSITEM item{static_cast<float>(1 + random() % 500) / 100.0F, byte(), byte(), byte(),
                         byte()};
    if (item.byInLow >= item.byInHigh) {
      item.byInLow = 0;
      item.byInHigh = 255;
    }
    const CBmpProcessing bmp = withItem(item);
    const auto expected = velka::literal::levelsTable(item.fGamma, item.byInLow, item.byInHigh,
                                                      item.byOutLow, item.byOutHigh);
    for (size_t v = 0; v < 256; ++v) {
      ASSERT_EQ(bmp.m_LevelsTable[0][v], expected[v]) << round << " " << v;
      ASSERT_EQ(bmp.m_LevelsTable[2][v], expected[v]) << round << " " << v;
    }
  }
}

}  // namespace
