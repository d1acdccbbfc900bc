#include <gtest/gtest.h>

#include "reference/ReferenceHalftone.h"

namespace velka::reference {
namespace {

using Plane = std::vector<uint8_t>;

Plane ditherFlat(int mode, size_t rows, size_t width, uint8_t value, int16_t dotFactor = 0,
                 int16_t threshold = 128) {
  Plane plane(rows * width, value);
  return dither(mode, plane, rows, width, width, dotFactor, threshold);
}

size_t dotsOf(const Plane& plane) {
  size_t dots = 0;
  for (const uint8_t byte : plane) {
    dots += byte == 0 ? 1 : 0;
  }
  return dots;
}

TEST(ReferenceHalftone, FixedThresholdTurnsAHundredIntoADotAndOneMoreNot) {
  Plane plane = {100, 101, 0, 255};
  EXPECT_EQ(dither(1, plane, 1, 4, 4, 0, 128), (Plane{0, 255, 0, 255}));
}

TEST(ReferenceHalftone, ColumnsPastTheWidthAreNotTreatedByTheThreshold) {
  Plane plane = {0, 0, 0, 0};
  EXPECT_EQ(dither(1, plane, 1, 3, 4, 0, 128), (Plane{0, 0, 0, 255}));
}

TEST(ReferenceHalftone, TheColumnSelectsTheScreensRow) {
  // Row 0 of the 6 x 6 screen begins 9, 11; column 0 begins 9, 12; scaled by 14.
  Plane plane = {126, 167, 125, 154};
  // (0,0): 126 <= 126 none; (1,0): 12*14=168 > 167 dot; (0,1): 154 > 125 dot; (1,1): 238 > 154 dot.
  EXPECT_EQ(dither(3, plane, 2, 2, 2, 0, 128), (Plane{255, 0, 0, 0}));
  Plane brighter = {125, 168, 154, 238};
  EXPECT_EQ(dither(3, brighter, 2, 2, 2, 0, 128), (Plane{0, 255, 255, 255}));
}

TEST(ReferenceHalftone, BlackPrintsUnderTheLowestScreenEntry) {
  // Entry 0 stands at row 1, column 4 of the 6 x 6 screen: column 1, row 4 of the page.
  Plane plane(36, 255);
  plane.at(4 * 6 + 1) = 0;
  const Plane out = dither(3, plane, 6, 6, 6, 0, 128);
  EXPECT_EQ(dotsOf(out), 1U);
  EXPECT_EQ(out.at(4 * 6 + 1), 0);
}

TEST(ReferenceHalftone, EachScreenPrintsItsShareOfMidGrey) {
  // Each entry stands twice: dots are twice the entries whose scaled value is above 100.
  EXPECT_EQ(dotsOf(ditherFlat(3, 6, 6, 100)), 2U * (18 - 8));      // 14 * 8 = 112 is the first
  EXPECT_EQ(dotsOf(ditherFlat(4, 8, 8, 100)), 2U * (32 - 13));     // 8 * 13 = 104
  EXPECT_EQ(dotsOf(ditherFlat(5, 12, 12, 100)), 2U * (72 - 34));   // 3 * 34 = 102
  EXPECT_EQ(dotsOf(ditherFlat(6, 16, 16, 100)), 2U * (128 - 51));  // 2 * 51 = 102
}

TEST(ReferenceHalftone, ScreensRepeatAcrossThePage) {
  const Plane out = ditherFlat(5, 24, 24, 100);
  for (size_t y = 0; y < 12; ++y) {
    for (size_t x = 0; x < 12; ++x) {
      EXPECT_EQ(out.at(y * 24 + x), out.at((y + 12) * 24 + x + 12));
    }
  }
}

TEST(ReferenceHalftone, DiffusionCarriesTheErrorRightAndDown) {
  Plane plane = {100, 100, 100, 100};
  // (0,0): dot, e=100: right 143, below 131, below right 106.
  // (1,0): 143 > 128, e=-112: below left 131-21=110, below 106-35=71.
  // (0,1): 110 dot, e=110: right 71+48=119. (1,1): 119 dot.
  EXPECT_EQ(dither(2, plane, 2, 2, 2, 0, 128), (Plane{0, 255, 0, 0}));
  EXPECT_EQ(plane, (Plane{100, 143, 110, 119}));
}

TEST(ReferenceHalftone, DiffusedValuesClampToTheEnds) {
  Plane plane = {128, 250, 200, 3};
  // e=128: right 250+56 -> 255. 255: no error. 200: e=-55: right 3-24 -> 0.
  EXPECT_EQ(dither(0, plane, 1, 4, 4, 0, 128), (Plane{0, 255, 255, 0}));
  EXPECT_EQ(plane, (Plane{128, 255, 200, 0}));
}

TEST(ReferenceHalftone, ANeighbourThatReaches254StaysBelowWhite) {
  Plane plane = {16, 247};
  dither(2, plane, 1, 2, 2, 0, 128);
  EXPECT_EQ(plane.at(1), 254);  // 247 + 16 * 7 / 16
  plane = {16, 248};
  dither(2, plane, 1, 2, 2, 0, 128);
  EXPECT_EQ(plane.at(1), 255);
}

TEST(ReferenceHalftone, ANeighbourThatReachesOneStaysAboveBlack) {
  Plane plane = {200, 25};
  dither(2, plane, 1, 2, 2, 0, 128);
  EXPECT_EQ(plane.at(1), 1);  // 25 - 55 * 7 / 16
  plane = {200, 24};
  dither(2, plane, 1, 2, 2, 0, 128);
  EXPECT_EQ(plane.at(1), 0);
}

TEST(ReferenceHalftone, TheErrorOfAWeightedDotIsTruncatedTowardsZero) {
  Plane plane = {101, 0};
  // Factor 15: printed level 151.5, e = trunc(-50.5) = -50; -50*7/16 = -21, clamped to 0.
  EXPECT_EQ(dither(2, plane, 1, 2, 2, 15, 128), (Plane{0, 0}));
  plane = {101, 200};
  dither(2, plane, 1, 2, 2, 15, 128);
  EXPECT_EQ(plane.at(1), 200 - 21);
}

TEST(ReferenceHalftone, UnknownModesDiffuse) {
  for (const int mode : {0, 7, -1, 32767}) {
    EXPECT_EQ(ditherFlat(mode, 9, 11, 90), ditherFlat(2, 9, 11, 90)) << mode;
  }
  EXPECT_NE(ditherFlat(1, 9, 11, 90), ditherFlat(2, 9, 11, 90));
}

TEST(ReferenceHalftone, AnEmptyPlaneHasNoDots) {
  for (const int mode : {1, 2, 3, 4, 5, 6}) {
    EXPECT_TRUE(ditherFlat(mode, 0, 0, 0).empty());
  }
}

}  // namespace
}  // namespace velka::reference
