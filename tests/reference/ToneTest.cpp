#include <gtest/gtest.h>

#include "reference/ReferenceTone.h"

namespace velka::reference {
namespace {

TEST(ReferenceGray, PureBlackAndPureWhiteTakeTheShortcut) {
  EXPECT_EQ(gray(0, 0, 0), 0);
  EXPECT_EQ(gray(255, 255, 255), 255);
}

TEST(ReferenceGray, WorkedColours) {
  EXPECT_EQ(gray(128, 128, 128), 144);
  EXPECT_EQ(gray(255, 0, 0), 133);
  EXPECT_EQ(gray(0, 255, 0), 224);
  EXPECT_EQ(gray(0, 0, 255), 82);
  EXPECT_EQ(gray(255, 255, 0), 247);
  EXPECT_EQ(gray(254, 254, 254), 253);
  EXPECT_EQ(gray(1, 1, 1), 1);
}

TEST(ReferenceGray, FractionsFromPoint45RoundUp) {
  EXPECT_EQ(gray(5, 5, 5), 4);          // 3.4608
  EXPECT_EQ(gray(148, 148, 148), 163);  // 162.4617
}

TEST(ReferenceGray, TheBranchOfTheTransferFunctionChangesBetweenTenAndEleven) {
  EXPECT_EQ(gray(10, 10, 10), 7);
  EXPECT_EQ(gray(11, 11, 11), 12);
}

TEST(ReferenceLight, BrightnessTwentyShiftsEveryLevel) {
  const auto table = lightTable(20, 0);
  EXPECT_EQ(table[0], 20);
  EXPECT_EQ(table[1], 21);
  EXPECT_EQ(table[234], 254);
  for (size_t i = 235; i < 256; ++i) {
    EXPECT_EQ(table.at(i), 255) << i;
  }
}

TEST(ReferenceLight, ContrastHundredDoublesTheDistanceFromMidGrey) {
  const auto table = lightTable(0, 100);
  EXPECT_EQ(table[128], 128);
  EXPECT_EQ(table[64], 0);
  EXPECT_EQ(table[192], 255);
  EXPECT_EQ(table[129], 130);
}

TEST(ReferenceLight, NeutralSettingsAreTheIdentity) {
  const auto table = lightTable(0, 0);
  for (size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(table.at(i), i);
  }
}

TEST(ReferenceLight, ExtremesStayAndOthersMove) {
  const auto table = lightTable(20, 0);
  const Pixel darkest = applyLight(table, {0, 0, 0});
  EXPECT_EQ(darkest.p0 + darkest.p1 + darkest.p2, 0);
  const Pixel white = applyLight(table, {255, 255, 255});
  EXPECT_EQ(white.p0 + white.p1 + white.p2, 3 * 255);
  const Pixel dark = applyLight(table, {1, 0, 0});
  EXPECT_EQ(dark.p0, 21);
  EXPECT_EQ(dark.p1, 20);
  EXPECT_EQ(dark.p2, 20);
}

TEST(ReferenceLevels, NeutralItemIsTheIdentity) {
  const auto table = levelsTable({});
  for (size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(table.at(i), i);
  }
}

TEST(ReferenceLevels, GammaTwoMapsMidGreyTo181) {
  EXPECT_EQ(levelsTable({2.0F, 0, 255, 0, 255})[128], 181);
}

TEST(ReferenceLevels, InputRangeStretches) {
  const auto table = levelsTable({1.0F, 50, 200, 0, 255});
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[50], 0);
  EXPECT_EQ(table[125], 128);
  EXPECT_EQ(table[200], 255);
  EXPECT_EQ(table[255], 255);
}

TEST(ReferenceLevels, OutputRangeCompresses) {
  const auto table = levelsTable({1.0F, 0, 255, 20, 235});
  EXPECT_EQ(table[0], 20);
  EXPECT_EQ(table[255], 235);
}

TEST(ReferenceLevels, GammaZeroKeepsOnlyWhite) {
  const auto table = levelsTable({0.0F, 0, 255, 0, 255});
  for (size_t i = 0; i < 255; ++i) {
    EXPECT_EQ(table.at(i), 0) << i;
  }
  EXPECT_EQ(table[255], 255);
}

TEST(ReferenceLevels, NegativeGammaAndEmptyInputRangeStayDefined) {
  EXPECT_EQ(levelsTable({-1.0F, 0, 255, 0, 255})[255], 255);
  const auto step = levelsTable({1.0F, 128, 128, 0, 255});
  EXPECT_EQ(step[128], 0);
  EXPECT_EQ(step[129], 255);
}

TEST(ReferenceTone, NeutralBlackInkIsTheGreyOfTheLevelledPixel) {
  const InkTone ink = makeInkTone(0, 0, 30);
  // 128 through gamma 0.3: trunc((128/255)^(1/0.3) * 255 + 0.5) = 26.
  EXPECT_EQ(ink.levels[128], 26);
  EXPECT_EQ(toneOfPixel(ink, {128, 128, 128}), gray(26, 26, 26));
}

TEST(ReferenceTone, ByteTwoIsTheRedComponent) {
  const InkTone ink = makeInkTone(0, 0, 100);
  EXPECT_EQ(toneOfPixel(ink, {0, 0, 255}), 133);
  EXPECT_EQ(toneOfPixel(ink, {255, 0, 0}), 82);
}

TEST(ReferenceTone, BrightnessComesBeforeTheLevels) {
  const InkTone ink = makeInkTone(20, 0, 100);
  EXPECT_EQ(toneOfPixel(ink, {108, 108, 108}), 144);
}

}  // namespace
}  // namespace velka::reference
