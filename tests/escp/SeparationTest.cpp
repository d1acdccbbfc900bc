// Which ink a pixel gets, against the literal rules.
#include <gtest/gtest.h>

#include <random>

#include "ESCPSML.h"
#include "Separation.h"
#include "reference/ReferenceOptions.h"
#include "reference/ReferenceSeparation.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

Ink asInk(reference::Ink ink) {
  if (ink == reference::Ink::Black) return Ink::Black;
  return ink == reference::Ink::Red ? Ink::Red : Ink::None;
}

// Every colour of a dense lattice that holds all the limits of the rules.
void expectSameInks(const tagOEMCFG& options) {
  const InkRules rules = compileInkRules(options);
  constexpr int kSteps[] = {0,   1,   9,   10,  50,  128, 129, 130, 137, 138, 149, 150, 198,
                            199, 200, 201, 238, 239, 240, 241, 248, 249, 250, 251, 254, 255};
  for (const int a : kSteps)
    for (const int b : kSteps)
      for (const int c : kSteps) {
        const auto p0 = static_cast<uint8_t>(a);
        const auto p1 = static_cast<uint8_t>(b);
        const auto p2 = static_cast<uint8_t>(c);
        ASSERT_EQ(rules.dot(p0, p1, p2).ink, asInk(reference::classify({p0, p1, p2}, options)))
            << a << " " << b << " " << c;
      }
}

TEST(Classing, EqualsTheLiteralRulesForEveryRoute) {
  for (int type = -1; type <= 4; ++type)
    for (int use = 0; use <= 3; ++use) {
      tagOEMCFG options = reference::defaultOptions();
      options.OutputColorType = static_cast<int16_t>(type);
      options.ColorRangeUseFor = static_cast<int16_t>(use);
      expectSameInks(options);
    }
}

TEST(Classing, ARangeWhoseBoundsCrossHoldsNothing) {
  tagOEMCFG options = reference::defaultOptions();
  options.minColorOffset.rgbGreen = 9;
  options.maxColorOffset.rgbGreen = 8;
  expectSameInks(options);
  EXPECT_EQ(compileInkRules(options).dot(0, 0, 255).ink, Ink::Black);
}

TEST(Classing, PureRedIsRedAndFullInkByDefault) {
  const InkDot dot = compileInkRules(reference::defaultOptions()).dot(0, 0, 255);
  EXPECT_EQ(dot.ink, Ink::Red);
  EXPECT_EQ(dot.value, 0);
}

TEST(Classing, TheSolidColourIsAdjustedWhenOneInkPrintsEverything) {
  tagOEMCFG options = reference::defaultOptions();
  options.OutputColorType = 2;
  const InkDot dot = compileInkRules(options).dot(0, 0, 255);
  EXPECT_EQ(dot.ink, Ink::Red);
  EXPECT_GT(dot.value, 0);
}

TEST(Classing, MidGreyIsBlackUnderBothUsesOfTheRange) {
  tagOEMCFG options = reference::defaultOptions();
  for (const int16_t use : {int16_t{1}, int16_t{2}}) {
    options.ColorRangeUseFor = use;
    EXPECT_EQ(compileInkRules(options).dot(128, 128, 128).ink, Ink::Black);
  }
}

TEST(Classing, TintedLightPixelsAreWhiteOnlyWithAStrongThirdByte) {
  const InkRules rules = compileInkRules(reference::defaultOptions());
  EXPECT_EQ(rules.dot(200, 200, 250).ink, Ink::None);
  EXPECT_EQ(rules.dot(200, 200, 249).ink, Ink::Red);
  EXPECT_EQ(rules.dot(199, 200, 250).ink, Ink::Red);
  EXPECT_EQ(rules.dot(240, 240, 240).ink, Ink::None);
}

TEST(Classing, RangeTestAsAFunction) {
  CESCPSML generator;
  EXPECT_TRUE(generator.IsColorBelongRange({1, 2, 3, 0}, {1, 2, 3, 9}, {1, 2, 3, 0}));
  EXPECT_FALSE(generator.IsColorBelongRange({1, 2, 4, 0}, {1, 2, 3, 0}, {1, 2, 3, 0}));
  EXPECT_FALSE(generator.IsColorBelongRange({1, 2, 3, 0}, {2, 0, 0, 0}, {1, 255, 255, 0}));
}

// Rows of all lengths, so that every end of the white-run steps is met.
TEST(RowSeparation, EqualsPixelByPixelOnRandomRows) {
  std::mt19937 random(3);
  const InkRules rules = compileInkRules(reference::defaultOptions());
  for (size_t pixels = 0; pixels < 200; ++pixels) {
    Bytes row(pixels * 3 + random() % 3, 0xFF);
    for (size_t i = 0; i < row.size(); ++i)
      if (random() % 17 < 3) row[i] = static_cast<uint8_t>(random());
    Bytes black(pixels, 255);
    Bytes red(pixels, 255);
    const RowInk found = separateRow(rules, row, black.data(), red.data());
    Bytes blackExpected(pixels, 255);
    Bytes redExpected(pixels, 255);
    RowInk expected;
    for (size_t x = 0; x < pixels; ++x) {
      const InkDot dot = rules.dot(row[3 * x], row[3 * x + 1], row[3 * x + 2]);
      if (dot.ink == Ink::Black) {
        blackExpected[x] = dot.value;
        expected.black = true;
      }
      if (dot.ink == Ink::Red) {
        redExpected[x] = dot.value;
        if (expected.firstRedColumn < 0) expected.firstRedColumn = static_cast<int64_t>(x);
      }
    }
    ASSERT_EQ(black, blackExpected) << pixels;
    ASSERT_EQ(red, redExpected) << pixels;
    ASSERT_EQ(found.black, expected.black);
    ASSERT_EQ(found.firstRedColumn, expected.firstRedColumn);
  }
}

TEST(RowSeparation, ABlankRowIsWhiteToItsLastPaddingByte) {
  Bytes row(16, 0xFF);
  EXPECT_TRUE(isBlankRow(row));
  row[15] = 0;
  EXPECT_FALSE(isBlankRow(row));
  row.assign(16, 254);
  EXPECT_FALSE(isBlankRow(row));
  EXPECT_TRUE(isBlankRow({}));
}

}  // namespace
}  // namespace velka::testing
