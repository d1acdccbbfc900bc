#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "BmpProcessing.h"
#include "ColorManagment.h"
#include "LiteralImaging.h"

namespace {

TEST(Light, NoBrightnessAndNoContrastIsTheIdentity) {
  CBmpProcessing bmp;
  bmp.SetLightTable(0, 0);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(bmp.m_LightTable[i], i);
  }
}

TEST(Light, BrightnessTwentyShiftsEveryLevelAndStopsAtWhite) {
  CBmpProcessing bmp;
  bmp.SetLightTable(20, 0);
  EXPECT_EQ(bmp.m_LightTable[0], 20);
  for (int i = 235; i < 256; ++i) {
    EXPECT_EQ(bmp.m_LightTable[i], 255);
  }
}

TEST(Light, ContrastOneHundredDoublesTheDistanceFromMidGrey) {
  CBmpProcessing bmp;
  bmp.SetLightTable(0, 100);
  EXPECT_EQ(bmp.m_LightTable[128], 128);
  EXPECT_EQ(bmp.m_LightTable[64], 0);
  EXPECT_EQ(bmp.m_LightTable[192], 255);
}

TEST(Light, PureBlackAndPureWhiteStayAndNearlyBlackMoves) {
  CBmpProcessing bmp;
  bmp.SetLightTable(20, 0);
  for (const unsigned char level : {uint8_t{0}, uint8_t{255}}) {
    unsigned char r = level;
    unsigned char g = level;
    unsigned char b = level;
    EXPECT_EQ(bmp.Light(r, g, b, 0, 0), 1);
    EXPECT_EQ(r, level);
    EXPECT_EQ(g, level);
    EXPECT_EQ(b, level);
  }
  unsigned char r = 0;
  unsigned char g = 0;
  unsigned char b = 1;
  EXPECT_EQ(bmp.Light(r, g, b, 7, 9), 1);
  EXPECT_EQ(r, 20);
  EXPECT_EQ(g, 20);
  EXPECT_EQ(b, 21);
}

TEST(Light, AllSettingsGiveTheSinglePrecisionTable) {
  CBmpProcessing bmp;
  for (int bright = -260; bright <= 260; bright += 7) {
    for (int contrast = -230; contrast <= 230; ++contrast) {
      bmp.SetLightTable(bright, contrast);
      const auto expected = velka::literal::lightTable(bright, contrast);
      for (size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(bmp.m_LightTable[i], expected[i]) << bright << " " << contrast << " " << i;
      }
    }
  }
}

// One encoder speaks of "255 or more" and "below 1" where the other one speaks of
// "above 255" and "negative"; they share a table because no entry can tell.
TEST(Light, LimitingAtOneAndTwoFiveFiveGivesTheSameTable) {
  CBmpProcessing bmp;
  for (int bright = -200; bright <= 200; bright += 3) {
    for (int contrast = -200; contrast <= 200; contrast += 3) {
      bmp.SetLightTable(bright, contrast);
      const float slope = static_cast<float>(contrast + 100) / 100.0F;
      for (int i = -128; i < 128; ++i) {
        float v = static_cast<float>(i) * slope + static_cast<float>(bright + 128);
        v = v + 0.5F;
        const float whole = std::trunc(v);
        const int expected = whole >= 255.0F ? 255 : (whole < 1.0F ? 0 : static_cast<int>(whole));
        ASSERT_EQ(bmp.m_LightTable[i + 128], expected) << bright << " " << contrast << " " << i;
      }
    }
  }
}

TEST(Light, ExtremeSettingsAreDefined) {
  CBmpProcessing bmp;
  bmp.SetLightTable(INT_MAX / 2, 0);
  EXPECT_EQ(bmp.m_LightTable[255], 255);
  // Beyond all integers is below them all.
  bmp.SetLightTable(INT_MAX, INT_MAX);
  EXPECT_EQ(bmp.m_LightTable[255], 0);
  bmp.SetLightTable(INT_MIN, INT_MIN);
  EXPECT_EQ(bmp.m_LightTable[255], 0);
}

TEST(Light, ColourManagementHasTheSameTableAndReturnsItsLastEntry) {
  CColorManagment color;
  CBmpProcessing bmp;
  EXPECT_EQ(color.SetLightTable(-30, 10), 238);
  bmp.SetLightTable(-30, 10);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(color.m_LightTable[i], bmp.m_LightTable[i]);
  }
  unsigned char r = 200;
  unsigned char g = 0;
  unsigned char b = 3;
  EXPECT_EQ(color.Light(r, g, b, 0, 0), 1);
  EXPECT_EQ(r, bmp.m_LightTable[200]);
  EXPECT_EQ(g, bmp.m_LightTable[0]);
  EXPECT_EQ(b, bmp.m_LightTable[3]);
}

}  // namespace
