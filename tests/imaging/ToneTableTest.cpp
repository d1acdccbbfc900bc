#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "LiteralImaging.h"
#include "ToneTable.h"

namespace {

using velka::ToneTable;
using velka::literal::kColorStep;

void expectLiteral(const velka::InkTone& settings, uint32_t step) {
  const ToneTable table(settings);
  const velka::literal::Tone literal(settings.brightness, settings.contrast, settings.levels);
  for (uint32_t c = 0; c < 1U << 24; c += step) {
    const auto p0 = static_cast<uint8_t>(c);
    const auto p1 = static_cast<uint8_t>(c >> 8);
    const auto p2 = static_cast<uint8_t>(c >> 16);
    ASSERT_EQ(table.tone(p0, p1, p2), literal(p0, p1, p2))
        << c << " at " << settings.brightness << " " << settings.contrast << " " << settings.levels;
  }
}

// All toned colours are colours, so this covers every setting's last step.
TEST(GrayOfRgb, EveryColourEqualsTheFormula) {
  for (uint32_t c = 0; c < 1U << 24; c += kColorStep) {
    const auto r = static_cast<uint8_t>(c >> 16);
    const auto g = static_cast<uint8_t>(c >> 8);
    const auto b = static_cast<uint8_t>(c);
    ASSERT_EQ(velka::grayOfRgb(r, g, b), velka::literal::gray(r, g, b)) << c;
  }
}

TEST(GrayOfRgb, WhiteAloneIs255) {
  EXPECT_EQ(velka::grayOfRgb(255, 255, 255), 255);
  EXPECT_EQ(velka::grayOfRgb(255, 255, 254), 254);
  EXPECT_EQ(velka::grayOfRgb(0, 0, 0), 0);
}

TEST(ToneTable, EveryColourWithDefaultRedSettingsEqualsTheLiteralPath) {
  expectLiteral({0, 0, 50}, kColorStep);
}

TEST(ToneTable, EveryColourWithDefaultBlackSettingsEqualsTheLiteralPath) {
  expectLiteral({0, 0, 30}, kColorStep);
}

TEST(ToneTable, BrightnessAndContrastEqualTheLiteralPathOnALattice) {
  for (const velka::InkTone& settings : {velka::InkTone{20, 0, 50},
                                         {-35, 0, 30},
                                         {0, 60, 100},
                                         {0, -100, 50},
                                         {300, 10, 50},
                                         {-300, -10, 30},
                                         {1, 1, 999}}) {
    expectLiteral(settings, 41 * kColorStep);
  }
}

TEST(ToneTable, RandomSettingsEqualTheLiteralPathOnALattice) {
  std::mt19937 random(17);
  for (int round = 0; round < 60; ++round) {
    expectLiteral({static_cast<int>(random() % 401) - 200, static_cast<int>(random() % 401) - 200,
                   static_cast<int>(random() % 300) + 1},
                  997 * kColorStep);
  }
}

TEST(ToneTable, BrightnessLeavesPureBlackAndPureWhiteAlone) {
  const ToneTable brighter({100, 0, 100});
  EXPECT_EQ(brighter.tone(0, 0, 0), 0);
  EXPECT_GT(brighter.tone(1, 0, 0), 80);
  const ToneTable darker({-100, 0, 100});
  EXPECT_EQ(darker.tone(255, 255, 255), 255);
  EXPECT_LT(darker.tone(254, 255, 255), 180);
}

TEST(ToneTable, PixelsThatBecomeWhiteAre255) {
  EXPECT_EQ(ToneTable({300, 0, 50}).tone(10, 20, 30), 255);
}

TEST(ToneTable, BytesAreBlueGreenRed) {
  const ToneTable plain({0, 0, 100});
  EXPECT_EQ(plain.tone(255, 0, 0), 82);
  EXPECT_EQ(plain.tone(0, 255, 0), 224);
  EXPECT_EQ(plain.tone(0, 0, 255), 133);
}

TEST(ToneTable, LevelsOfZeroLeaveOnlyFullChannels) {
  const ToneTable table({0, 0, 0});
  EXPECT_EQ(table.tone(254, 254, 254), 0);
  EXPECT_EQ(table.tone(255, 255, 255), 255);
  EXPECT_EQ(table.tone(254, 255, 254), 224);
}

TEST(ToneTable, ExtremeSettingsAreDefined) {
  EXPECT_EQ(ToneTable({INT_MAX, INT_MAX, INT_MAX}).tone(200, 200, 200), 0);
  EXPECT_EQ(ToneTable({INT_MIN, INT_MIN, 50}).tone(200, 200, 200), 0);
  EXPECT_EQ(ToneTable({0, 0, INT_MIN}).tone(255, 255, 255), 255);
}

}  // namespace
