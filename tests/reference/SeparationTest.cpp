#include <gtest/gtest.h>

#include "reference/ReferenceOptions.h"
#include "reference/ReferenceSeparation.h"

namespace velka::reference {
namespace {

PageImage whitePage(int width, int height) {
  PageImage page;
  page.width = width;
  page.height = height;
  page.stride = (static_cast<size_t>(width) * 24 + 31) / 32 * 4;
  page.bytes.assign(page.stride * static_cast<size_t>(height), 255);
  return page;
}

void paint(PageImage& page, int row, int column, Pixel pixel) {
  const size_t at = static_cast<size_t>(row) * page.stride + 3 * static_cast<size_t>(column);
  page.bytes.at(at) = pixel.p0;
  page.bytes.at(at + 1) = pixel.p1;
  page.bytes.at(at + 2) = pixel.p2;
}

constexpr Pixel black{0, 0, 0};
constexpr Pixel red{0, 0, 255};

TEST(ReferenceSeparation, LightPixelsAreWhite) {
  const tagOEMCFG options = defaultOptions();
  EXPECT_EQ(classify({240, 240, 240}, options), Ink::None);
  EXPECT_EQ(classify({239, 240, 240}, options), Ink::Black);
  EXPECT_EQ(classify({200, 200, 250}, options), Ink::None);
  EXPECT_EQ(classify({200, 200, 249}, options), Ink::Red);
  EXPECT_EQ(classify({199, 200, 250}, options), Ink::Red);
  EXPECT_EQ(classify({250, 200, 200}, options), Ink::Red);
}

TEST(ReferenceSeparation, TheRangeSelectsRedByDefault) {
  const tagOEMCFG options = defaultOptions();
  EXPECT_EQ(classify(red, options), Ink::Red);
  EXPECT_EQ(classify({0, 0, 130}, options), Ink::Red);
  EXPECT_EQ(classify({0, 0, 129}, options), Ink::Black);
}

TEST(ReferenceSeparation, NearGreyIsBlackUnderBothRangeUses) {
  tagOEMCFG options = defaultOptions();
  for (const int16_t use : {int16_t{1}, int16_t{2}}) {
    options.ColorRangeUseFor = use;
    EXPECT_EQ(classify({128, 128, 128}, options), Ink::Black);
    EXPECT_EQ(classify({140, 149, 140}, options), Ink::Black);
  }
  options.ColorRangeUseFor = 2;
  EXPECT_EQ(classify({140, 150, 140}, options), Ink::Red);
  options.ColorRangeUseFor = 1;
  EXPECT_EQ(classify({10, 100, 10}, options), Ink::Red);
}

TEST(ReferenceSeparation, ARangeTurnedAroundHoldsNothing) {
  tagOEMCFG options = defaultOptions();
  options.minColorOffset.rgbBlue = 1;
  options.maxColorOffset.rgbBlue = 0;
  EXPECT_EQ(classify(red, options), Ink::Black);
}

TEST(ReferenceSeparation, TheOutputTypeOverridesTheRange) {
  tagOEMCFG options = defaultOptions();
  options.OutputColorType = 1;
  EXPECT_EQ(classify(red, options), Ink::Black);
  options.OutputColorType = 2;
  EXPECT_EQ(classify(black, options), Ink::Red);
  options.OutputColorType = 4;
  EXPECT_EQ(classify(black, options), Ink::None);
  options.OutputColorType = 3;
  options.ColorRangeUseFor = 3;
  EXPECT_EQ(classify(black, options), Ink::None);
}

TEST(ReferenceSeparation, AWhitePageHasNoBand) {
  const Separation s = separatePage(whitePage(5, 100), 180, 180, defaultOptions());
  EXPECT_TRUE(s.bands.empty());
  EXPECT_FALSE(s.blackFlag);
  EXPECT_FALSE(s.redFlag);
  EXPECT_FALSE(s.firstRedRow.has_value());
}

TEST(ReferenceSeparation, AnEmptyPageHasNoBand) {
  PageImage page;
  page.width = -3;
  page.height = 10;
  EXPECT_TRUE(separatePage(page, 180, 180, defaultOptions()).bands.empty());
}

TEST(ReferenceSeparation, AlmostWhiteRowsMakeBandsWithoutInk) {
  PageImage page = whitePage(8, 50);
  page.bytes.assign(page.bytes.size(), 254);
  const Separation s = separatePage(page, 180, 180, defaultOptions());
  ASSERT_EQ(s.bands.size(), 3U);
  EXPECT_EQ(s.bands[2].top, 48);
  EXPECT_EQ(s.bands[2].bottom, 71);
  EXPECT_EQ(s.bands[2].left, 0);
  EXPECT_EQ(s.bands[2].right, 7);
  EXPECT_FALSE(s.blackFlag);
  EXPECT_FALSE(s.redFlag);
}

TEST(ReferenceSeparation, BandHeightFollowsTheVerticalResolution) {
  PageImage page = whitePage(8, 100);
  paint(page, 3, 0, black);
  EXPECT_EQ(separatePage(page, 360, 360, defaultOptions()).bands.at(0).bottom, 3 + 47);
  EXPECT_EQ(separatePage(page, 180, 180, defaultOptions()).bands.at(0).bottom, 3 + 23);
  EXPECT_EQ(separatePage(page, 60, 60, defaultOptions()).bands.at(0).bottom, 3 + 23);
}

TEST(ReferenceSeparation, BlankRowsAreSkippedBetweenBandsOnly) {
  PageImage page = whitePage(8, 100);
  paint(page, 10, 2, black);
  paint(page, 20, 2, black);
  paint(page, 40, 2, black);
  const Separation s = separatePage(page, 180, 180, defaultOptions());
  ASSERT_EQ(s.bands.size(), 2U);
  EXPECT_EQ(s.bands[0].top, 10);
  EXPECT_EQ(s.bands[1].top, 40);
}

TEST(ReferenceSeparation, PaddingThatIsNotWhiteMakesARowPrint) {
  PageImage page = whitePage(5, 4);  // 15 bytes of 16
  page.bytes.at(2 * page.stride + 15) = 0;
  const Separation s = separatePage(page, 180, 180, defaultOptions());
  ASSERT_EQ(s.bands.size(), 1U);
  EXPECT_EQ(s.bands[0].top, 2);
  EXPECT_FALSE(s.blackFlag);
}

TEST(ReferenceSeparation, TheFirstRedRowIsThatOfTheFirstColumnWithRed) {
  PageImage page = whitePage(8, 60);
  paint(page, 5, 6, red);
  paint(page, 9, 1, red);
  const Separation s = separatePage(page, 180, 180, defaultOptions());
  EXPECT_EQ(s.firstRedRow, 9);
  EXPECT_TRUE(s.redFlag);
  EXPECT_FALSE(s.blackFlag);
}

TEST(ReferenceSeparation, TheSolidColourIsFullInkWithBothInksOnly) {
  PageImage page = whitePage(4, 1);
  paint(page, 0, 0, red);
  tagOEMCFG options = defaultOptions();
  options.LevelsRed = 100;
  EXPECT_EQ(separateTones(page, 180, 180, options).red.at(0), 0);
  options.OutputColorType = 2;
  EXPECT_EQ(separateTones(page, 180, 180, options).red.at(0), 133);
  options.OutputColorType = 1;
  options.LevelsBlack = 100;
  EXPECT_EQ(separateTones(page, 180, 180, options).black.at(0), 133);
}

TEST(ReferenceSeparation, EachInkUsesItsOwnTables) {
  PageImage page = whitePage(4, 1);
  paint(page, 0, 0, {108, 108, 108});
  paint(page, 0, 1, {0, 0, 235});
  tagOEMCFG options = defaultOptions();
  options.LevelsRed = 100;
  options.LevelsBlack = 100;
  options.BrightnessBlack = 20;
  Separation s = separateTones(page, 180, 180, options);
  EXPECT_EQ(s.black.at(0), 144);
  EXPECT_EQ(s.red.at(1), gray(235, 0, 0));
  options.BrightnessRed = 20;
  s = separateTones(page, 180, 180, options);
  EXPECT_EQ(s.red.at(1), gray(255, 20, 20));
}

TEST(ReferenceSeparation, HalftoningUsesTheModeOfEachInk) {
  PageImage page = whitePage(4, 1);
  paint(page, 0, 0, {100, 100, 100});
  paint(page, 0, 1, {150, 0, 160});
  tagOEMCFG options = defaultOptions();
  options.LevelsBlack = 100;
  options.LevelsRed = 100;
  options.sDitherBlack = 1;
  options.sDitherRed = 1;
  const int blackTone = separateTones(page, 180, 180, options).black.at(0);
  const int redTone = separateTones(page, 180, 180, options).red.at(1);
  ASSERT_GT(blackTone, 100);
  ASSERT_LT(redTone, 101);
  const Separation s = separatePage(page, 180, 180, options);
  EXPECT_EQ(s.black, (std::vector<uint8_t>{255, 255, 255, 255}));
  EXPECT_EQ(s.red, (std::vector<uint8_t>{255, 0, 255, 255}));
}

TEST(ReferenceSeparation, AShortBufferReadsAsWhite) {
  PageImage page = whitePage(4, 10);
  page.bytes.assign(7, 0);
  const Separation s = separatePage(page, 180, 180, defaultOptions());
  ASSERT_EQ(s.bands.size(), 1U);
  EXPECT_EQ(s.bands[0].top, 0);
  EXPECT_EQ(s.black.at(0), 0);
  EXPECT_EQ(s.black.at(4), 255);
}

}  // namespace
}  // namespace velka::reference
