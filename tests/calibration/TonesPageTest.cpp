// The patches of the tones page against what the filter prints with their values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

#include "PageTones.h"
#include "TonesPage.h"
#include "support/OpenPpd.h"

namespace velka::calibration {
namespace {

// The colours that the patches of each ink are judged by, darkest first.
constexpr std::array<Colour, 4> kGreys{
    {{60, 60, 60}, {110, 110, 110}, {160, 160, 160}, {200, 200, 200}}};
constexpr std::array<Colour, 4> kReds4{
    {{180, 0, 0}, {249, 0, 0}, {249, 100, 100}, {249, 180, 180}}};

tagOEMCFG optionsWith(const testing::Options& choices, int model = 1) {
  const testing::OpenPpd ppd(choices, model);
  tagOEMCFG options = {};
  InitalizeOemCfg(&options, ppd, nullptr);
  return options;
}

const Colour& shadeOf(const TonePatch& patch) {
  return (patch.ink == Ink::Red ? kReds4 : kGreys).at(static_cast<size_t>(patch.shade));
}

// A queue's settings, some of them far from the defaults.
std::vector<testing::Options> queues() {
  return {{},
          {{"LevelsBlack", "33"}, {"BrightnessRed", "120"}},
          {{"BrightnessBlack", "82"}, {"ContrastBlack", "130"}, {"LevelsRed", "40"}},
          {{"RedMinValue", "90"}, {"GreenMaxValue", "200"}}};
}

TEST(TonesPage, WantsOfEachPatchWhatTheFilterPrintsWithItsValue) {
  for (const testing::Options& queue : queues()) {
    for (const TonePatch& patch : tonePatches(optionsWith(queue))) {
      if (patch.value == "def.") continue;
      testing::Options changed = queue;
      std::erase_if(changed, [&](const auto& choice) { return choice.first == patch.option; });
      changed.emplace_back(patch.option, patch.value);
      // Not the rules: with a narrow range the shade itself may be of the other ink.
      const tagOEMCFG options = optionsWith(changed);
      const bool red = patch.ink == Ink::Red;
      const ToneTable table(
          red ? InkTone{options.BrightnessRed, options.ContrastRed, options.LevelsRed}
              : InkTone{options.BrightnessBlack, options.ContrastBlack, options.LevelsBlack});
      const Colour shade = shadeOf(patch);
      EXPECT_EQ(patch.wanted, table.tone(shade.blue, shade.green, shade.red))
          << patch.option << "=" << patch.value << " shade " << patch.shade;
    }
  }
}

TEST(TonesPage, DrawsEachPatchInAColourThatPrintsItsToneInItsInk) {
  for (const testing::Options& queue : queues()) {
    const tagOEMCFG options = optionsWith(queue);
    const InkRules rules = compileInkRules(options);
    for (const TonePatch& patch : tonePatches(options)) {
      if (patch.quarters == 0) continue;
      const InkDot dot = inkOf(rules, patch.box.colour);
      EXPECT_EQ(dot.ink, patch.ink) << patch.option << "=" << patch.value;
      EXPECT_NEAR(255 - (255 - dot.value) * patch.quarters / 4.0, patch.printed,
                  patch.quarters == 4 ? 0 : 1);
    }
  }
}

TEST(TonesPage, OfTheDefaultsMissesNoToneByMoreThanSevenOf255ButTheDarkestReds) {
  int far = 0;
  for (const TonePatch& patch : tonePatches(defaultOemdev[0])) {
    const int miss = std::abs(patch.wanted - patch.printed);
    // Below the darkest red that counts as red there is full ink and nothing between.
    if (patch.ink == Ink::Red && patch.wanted < 25) {
      EXPECT_LE(miss, 13);
      continue;
    }
    EXPECT_LE(miss, 7) << patch.option << "=" << patch.value << " shade " << patch.shade;
    if (miss > 5) ++far;
  }
  EXPECT_LE(far, 4);
}

TEST(TonesPage, ShowsTheValueOfNowAsItIsAndMarksItOncePerOption) {
  for (const testing::Options& queue : queues()) {
    std::map<std::string, int> marked;
    for (const TonePatch& patch : tonePatches(optionsWith(queue))) {
      if (!patch.now) continue;
      ++marked[patch.option];
      EXPECT_LE(std::abs(patch.wanted - patch.printed), 7) << patch.option;
    }
    EXPECT_EQ(marked.size(), 6U);
    for (const auto& [option, count] : marked) EXPECT_EQ(count, 4) << option;
  }
}

TEST(TonesPage, HasEveryValueInOrderAndTheOneOfNowAmongThem) {
  const auto patches = tonePatches(optionsWith({{"BrightnessBlack", "82"}}));
  std::vector<std::string> values;
  for (const TonePatch& patch : patches) {
    if (patch.option == "BrightnessBlack" && patch.shade == 0) values.push_back(patch.value);
  }
  EXPECT_EQ(values, (std::vector<std::string>{"60", "82", "90", "100", "110", "125", "140"}));
  std::vector<std::string> reds;
  for (const TonePatch& patch : patches) {
    if (patch.option == "LevelsRed" && patch.shade == 0) reds.push_back(patch.value);
  }
  EXPECT_EQ(reds, (std::vector<std::string>{"6", "9", "13", "def.", "22", "30", "40"}));
}

TEST(TonesPage, HasAllRedBelowAllBlack) {
  const Drawn drawn = tonesPage({});
  const auto& page = std::get<DotDrawing>(drawn);
  double lowestBlack = 0;
  double highestRed = page.boxes.back().top;
  const InkRules rules = compileInkRules(defaultOemdev[0]);
  for (const DotBox& box : page.boxes) {
    const bool red = inkOf(rules, box.colour).ink == Ink::Red;
    if (red) highestRed = std::min(highestRed, box.top);
    if (!red) lowestBlack = std::max(lowestBlack, box.top + box.height);
  }
  EXPECT_LT(lowestBlack, highestRed);
}

TEST(TonesPage, IsRefusedWhereAnInkDoesNotPrint) {
  for (const testing::Options& choices :
       {testing::Options{{"OutputColorType", "1"}}, testing::Options{{"OutputColorType", "2"}},
        testing::Options{{"RedMinValue", "255"}, {"RedMaxValue", "0"}}}) {
    PageSettings settings;
    settings.options = optionsWith(choices);
    EXPECT_TRUE(std::holds_alternative<std::string>(tonesPage(settings)));
  }
}

}  // namespace
}  // namespace velka::calibration
