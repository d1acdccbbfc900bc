// The page's colours, their inks and what would change them.
#include <gtest/gtest.h>

#include "WantedInk.h"

namespace velka::serve {
namespace {

constexpr uint32_t kRed = 0xD80000;
constexpr uint32_t kBlue = 0x0000C0;
constexpr uint32_t kGreen = 0x00A000;
constexpr uint32_t kGrey = 0x808080;
constexpr uint32_t kPale = 0xF8F8F8;

const PrinterOptions& options() {
  static const PrinterOptions all(std::string(VELKA_PPDS) + "/velka-standard.ppd", "");
  return all;
}

std::vector<ColourGroup> pageOf(std::initializer_list<CountedColour> colours) {
  std::vector<CountedColour> all = colours;
  return groupColours(all);
}

std::string wayTo(Ink ink, uint32_t rgb, const Settings& settings,
                  const std::vector<ColourGroup>& page) {
  const auto way = settingsFor({rgb, ink}, options(), settings, page);
  if (const auto* refusal = std::get_if<Refusal>(&way)) return refusal->why;
  std::string text;
  for (const auto& [name, value] : std::get<Settings>(way)) text += name + "=" + value + " ";
  return text;
}

TEST(Colours, AreCountedWithoutThePaper) {
  const RasterPixels pixels{3, 1, 180, 180, {255, 255, 255, 0xD8, 0, 0, 0xD8, 0, 0}};
  const auto colours = countColours(pixels);
  ASSERT_EQ(colours.size(), 1U);
  EXPECT_EQ(colours[0].rgb, kRed);
  EXPECT_EQ(colours[0].pixels, 2U);
}

TEST(Colours, ThatLookAlikeStandTogetherAndNoneIsLost) {
  std::vector<CountedColour> colours = {{kRed, 100}, {kBlue, 50}, {0xD01008, 7}, {0x10A0F0, 3}};
  const auto groups = groupColours(colours);
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[0].rgb, kRed);
  EXPECT_EQ(groups[0].pixels, 107U);
  colours.clear();
  uint64_t pixels = 0;
  for (uint32_t i = 0; i < 4096; ++i) {
    colours.push_back({(i & 0xF00U) << 12U | (i & 0xF0U) << 8U | (i & 0xFU) << 4U, 5000 - i});
    pixels += 5000 - i;
  }
  const auto many = groupColours(colours);
  EXPECT_EQ(many.size(), kMostGroups);
  for (const ColourGroup& group : many) pixels -= group.pixels;
  EXPECT_EQ(pixels, 0U);
  EXPECT_TRUE(groupColours({}).empty());
}

TEST(Inks, AreThoseOfTheFiltersRules) {
  const InkRules rules = rulesOf(options(), {});
  EXPECT_EQ(dotOf(rules, kRed).ink, Ink::Red);
  EXPECT_EQ(dotOf(rules, kBlue).ink, Ink::Black);
  EXPECT_EQ(dotOf(rules, kGrey).ink, Ink::Black);
  EXPECT_EQ(dotOf(rules, 0xFFFFFF).ink, Ink::None);
  EXPECT_EQ(dotOf(rulesOf(options(), {{"ColorRangeUseFor", "Black"}}), kBlue).ink, Ink::Red);
  const auto inks = inksOf(rules, {kRed, 30, {{kRed, 10}, {kBlue, 15}, {0xFFFFFE, 5}}});
  EXPECT_EQ(inks, (std::array<uint64_t, 3>{5, 15, 10}));
}

TEST(Bounds, ThatWouldChangeAColourAreToldWithTheirNearestChoice) {
  const auto steps = boundSteps(options(), {}, 0xB40A14);  // 180, 10, 20
  std::string text;
  for (const BoundStep& step : steps)
    text += step.keyword + "=" + step.value + (step.ink == Ink::Black ? " black " : " red ");
  EXPECT_EQ(text,
            "RedMinValue=185 black RedMaxValue=175 black GreenMinValue=15 black "
            "GreenMaxValue=5 black BlueMinValue=25 black BlueMaxValue=15 black ");
  EXPECT_TRUE(boundSteps(options(), {}, kGrey).empty());
  EXPECT_TRUE(boundSteps(options(), {}, kPale).empty());
}

TEST(AWishForAnInk, MovesTheNearestBounds) {
  const auto page = pageOf({{kRed, 100}, {kBlue, 50}, {kGreen, 40}});
  EXPECT_EQ(wayTo(Ink::Red, kBlue, {}, page), "RedMinValue=0 ");
  EXPECT_EQ(wayTo(Ink::Red, 0x640000, {}, page), "RedMinValue=100 ");
  EXPECT_EQ(wayTo(Ink::Red, kRed, {}, page), "");
}

TEST(AWishForAnInk, IsGrantedWhereItChangesLeastOfThePage) {
  // Orange shall be black; red must not be, as far as a bound can tell them apart.
  const uint32_t orange = 0xF08000;
  const auto page = pageOf({{kRed, 1000}, {orange, 10}, {kBlue, 50}});
  const std::string way = wayTo(Ink::Black, orange, {}, page);
  const auto settings = settingsFor({orange, Ink::Black}, options(), {}, page);
  const InkRules rules = rulesOf(options(), std::get<Settings>(settings));
  EXPECT_EQ(dotOf(rules, orange).ink, Ink::Black) << way;
  EXPECT_EQ(dotOf(rules, kRed).ink, Ink::Red) << way;
}

TEST(AWishForAnInk, TurnsBothInksOnWhereOnlyOneIs) {
  const auto page = pageOf({{kRed, 100}});
  EXPECT_EQ(wayTo(Ink::Red, kRed, {{"OutputColorType", "Black"}}, page), "");
  EXPECT_EQ(wayTo(Ink::Black, kBlue, {{"OutputColorType", "Red"}}, page), "");
}

TEST(AWishForAnInk, OfTheOtherSenseOfTheRangeIsGrantedToo) {
  const Settings other = {{"ColorRangeUseFor", "Black"}};
  const auto page = pageOf({{kRed, 100}, {kBlue, 50}});
  for (const uint32_t rgb : {kRed, kBlue}) {
    for (const Ink ink : {Ink::Red, Ink::Black}) {
      const auto way = settingsFor({rgb, ink}, options(), other, page);
      ASSERT_TRUE(std::holds_alternative<Settings>(way));
      EXPECT_EQ(dotOf(rulesOf(options(), std::get<Settings>(way)), rgb).ink, ink);
    }
  }
}

TEST(AWishForAnInk, OfAGreyOrOfPaperIsRefusedWithTheReason) {
  const auto page = pageOf({{kGrey, 10}});
  EXPECT_EQ(wayTo(Ink::Red, kGrey, {}, page), "a grey prints as it does, whatever the range");
  EXPECT_EQ(wayTo(Ink::Red, kPale, {}, page),
            "so light a colour counts as paper and is not printed, whatever the range");
}

TEST(WhatTurns, IsCountedByGroupAndInk) {
  const auto page = pageOf({{kRed, 100}, {kBlue, 50}, {kGreen, 40}});
  const auto turned =
      whatTurns(rulesOf(options(), {}), rulesOf(options(), {{"RedMinValue", "0"}}), page);
  ASSERT_EQ(turned.size(), 2U);
  EXPECT_EQ(page[turned[0].group].rgb, kBlue);
  EXPECT_EQ(turned[0].toRed, 50U);
  EXPECT_EQ(turned[1].toRed, 40U);
  EXPECT_EQ(turned[0].toBlack + turned[0].toNone, 0U);
}

}  // namespace
}  // namespace velka::serve
