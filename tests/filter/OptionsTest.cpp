// Options from the PPD.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "InitalizeOemCfg.h"
#include "support/OpenPpd.h"

namespace velka::testing {
namespace {

tagOEMCFG optionsFrom(const Options& options, int modelNumber = 1) {
  const OpenPpd ppd(options, modelNumber);
  EXPECT_NE(static_cast<ppd_file_t*>(ppd), nullptr);
  tagOEMCFG record = {};
  InitalizeOemCfg(&record, ppd, nullptr);
  return record;
}

void expectSameBytes(const tagOEMCFG& a, const tagOEMCFG& b) {
  EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
}

TEST(Options, APpdWithoutAnyYieldsTheDefaultsOfItsModel) {
  for (const int model : {1, 2, 7}) {
    tagOEMCFG expected = defaultOemdev[model == 2 ? 1 : 0];
    expected.sConfigured = 1;
    expectSameBytes(optionsFrom({}, model), expected);
  }
}

TEST(Options, TheDefaultRowsDifferInRedMinimumAndModelOnly) {
  tagOEMCFG orlo = defaultOemdev[1];
  EXPECT_EQ(+orlo.minColorOffset.rgbRed, 150);
  EXPECT_EQ(+orlo.sModel, 2);
  orlo.minColorOffset.rgbRed = 130;
  orlo.sModel = 1;
  expectSameBytes(orlo, defaultOemdev[0]);
}

TEST(Options, TheDefaultRowHoldsTheBuiltInValues) {
  const tagOEMCFG& o = defaultOemdev[0];
  EXPECT_EQ(+o.sHeadPins, 24);
  EXPECT_EQ(+o.sSpare1, 2);
  EXPECT_EQ(+o.OutputColorType, 3);
  EXPECT_EQ(+o.ColorRangeUseFor, 2);
  EXPECT_EQ(+o.maxColorOffset.rgbBlue, 255);
  EXPECT_EQ(+o.solidColor.rgbRed, 255);
  EXPECT_EQ(+o.solidColor.rgbGreen, 0);
  EXPECT_EQ(+o.sConfigured, 2);
  EXPECT_EQ(+o.sCopies, 1);
  EXPECT_EQ(+o.sDotErrorFactor, 0);
  EXPECT_EQ(+o.sDiffusionThreshold, 128);
  EXPECT_EQ(+o.sEjectMode, 4);
  EXPECT_EQ(+o.sEjectFirstCount, 2);
  EXPECT_EQ(+o.sEjectSecondCount, 1);
  EXPECT_EQ(+o.sSpare6, 100);
  EXPECT_EQ(+o.sSpare7, 3);
  EXPECT_EQ(+o.LevelsRed, 50);
  EXPECT_EQ(+o.LevelsBlack, 30);
  EXPECT_EQ(+o.sDitherRed, 2);
  EXPECT_EQ(+o.sDitherBlack, 2);
}

TEST(Options, WithoutAPpdNotEvenTheDefaultsAreCopied) {
  tagOEMCFG record = {};
  record.sRotation = 5;
  InitalizeOemCfg(&record, nullptr, nullptr);
  EXPECT_EQ(+record.sRotation, 5);
  EXPECT_EQ(+record.sHeadPins, 0);
  InitalizeOemCfg(nullptr, nullptr, nullptr);
}

TEST(Options, BrightnessAndContrastAreCentredOn100) {
  for (const auto& [code, value] :
       std::vector<std::pair<std::string, int>>{{"100", 0}, {"0", -200}, {"200", 200}}) {
    const tagOEMCFG o = optionsFrom({{"BrightnessRed", code},
                                     {"BrightnessBlack", code},
                                     {"ContrastRed", code},
                                     {"ContrastBlack", code}});
    EXPECT_EQ(+o.BrightnessRed, value);
    EXPECT_EQ(+o.BrightnessBlack, value);
    EXPECT_EQ(+o.ContrastRed, value);
    EXPECT_EQ(+o.ContrastBlack, value);
  }
}

TEST(Options, LevelsAreThreeHundredthsAStep) {
  const tagOEMCFG o = optionsFrom({{"LevelsRed", "17"}, {"LevelsBlack", "100"}});
  EXPECT_EQ(+o.LevelsRed, 51);
  EXPECT_EQ(+o.LevelsBlack, 300);
}

TEST(Options, CodesWrapToTheWidthOfTheirField) {
  const tagOEMCFG o = optionsFrom({{"BrightnessRed", "20000"},
                                   {"LevelsRed", "2147483647"},
                                   {"OutputColorType", "65539"},
                                   {"RedMinValue", "300"}});
  EXPECT_EQ(+o.BrightnessRed, static_cast<int16_t>(39800));
  EXPECT_EQ(+o.LevelsRed, static_cast<int16_t>(int64_t{3} * 2147483647));
  EXPECT_EQ(+o.OutputColorType, 3);
  EXPECT_EQ(+o.minColorOffset.rgbRed, 44);
}

TEST(Options, DistancesAreTenthsInSinglePrecisionTruncated) {
  for (const auto& [code, tenths] : std::vector<std::pair<std::string, int>>{{"2.57", 25},
                                                                             {"-1.5", -15},
                                                                             {"0.7", 7},
                                                                             {"5", 50},
                                                                             {"1e30", INT_MIN},
                                                                             {"-1e30", INT_MIN},
                                                                             {"nan", INT_MIN},
                                                                             {"inf", INT_MIN},
                                                                             {"abc", 0}}) {
    const tagOEMCFG o =
        optionsFrom({{"HorizontalOffsetValue", code}, {"VerticalOffsetValue", code}});
    EXPECT_EQ(+o.sHrzOffset, tenths) << code;
    EXPECT_EQ(+o.sVtcOffset, tenths) << code;
  }
}

TEST(Options, MinusOneKeepsTheDefault) {
  const tagOEMCFG o = optionsFrom({{"LevelsRed", "-1"},
                                   {"HorizontalOffsetValue", "-1"},
                                   {"RedMinValue", "-1"},
                                   {"BlueMaxValue", "-1"},
                                   {"OutputColorType", "4294967295"},
                                   {"AnticlockwiseRotate", "99999999999999999999"}});
  EXPECT_EQ(+o.LevelsRed, 50);
  EXPECT_EQ(+o.sHrzOffset, 0);
  EXPECT_EQ(+o.minColorOffset.rgbRed, 130);
  EXPECT_EQ(+o.maxColorOffset.rgbBlue, 255);
  EXPECT_EQ(+o.OutputColorType, 3);
  EXPECT_EQ(+o.sRotation, 0);
}

TEST(Options, AnEmptyCodeStoresZero) {
  const tagOEMCFG o = optionsFrom({{"OutputColorType", ""}, {"LevelsBlack", ""}});
  EXPECT_EQ(+o.OutputColorType, 0);
  EXPECT_EQ(+o.LevelsBlack, 0);
}

TEST(Options, EveryKeywordReachesItsField) {
  const tagOEMCFG o = optionsFrom({{"HorizontalOffset", "1"},
                                   {"VerticalOffset", "1"},
                                   {"AnticlockwiseRotate", "3"},
                                   {"OutputColorType", "2"},
                                   {"ColorRangeUseFor", "1"},
                                   {"RedMinValue", "11"},
                                   {"GreenMinValue", "12"},
                                   {"BlueMinValue", "13"},
                                   {"RedMaxValue", "21"},
                                   {"GreenMaxValue", "22"},
                                   {"BlueMaxValue", "23"},
                                   {"SplitBlackRed", "1"}});
  EXPECT_EQ(+o.sHrzDir, 1);
  EXPECT_EQ(+o.sVtcDir, 1);
  EXPECT_EQ(+o.sRotation, 3);
  EXPECT_EQ(+o.OutputColorType, 2);
  EXPECT_EQ(+o.ColorRangeUseFor, 1);
  EXPECT_EQ(+o.minColorOffset.rgbRed, 11);
  EXPECT_EQ(+o.minColorOffset.rgbGreen, 12);
  EXPECT_EQ(+o.minColorOffset.rgbBlue, 13);
  EXPECT_EQ(+o.maxColorOffset.rgbRed, 21);
  EXPECT_EQ(+o.maxColorOffset.rgbGreen, 22);
  EXPECT_EQ(+o.maxColorOffset.rgbBlue, 23);
  EXPECT_EQ(+o.SplitBlackRed, 1);
}

TEST(OptionLookup, PrefersTheMarkedChoiceOverTheDefault) {
  const OpenPpd ppd(Options{{"LevelsRed", "5"}});
  EXPECT_STREQ(GetOptionChoiceCode("LevelsRed", ppd), "5");
  ppdMarkOption(ppd, "LevelsRed", "Other");
  EXPECT_STREQ(GetOptionChoiceCode("LevelsRed", ppd), "7");
  EXPECT_EQ(GetOptionChoiceIndex("LevelsRed", ppd), 7);
}

TEST(OptionLookup, FallsBackToTheDefaultChoiceWhenNothingIsMarked) {
  TempFile file(ppdText({1, {{"LevelsRed", "5.5"}}, false}));
  ppd_file_t* ppd = ppdOpenFile(file.path().c_str());
  ASSERT_NE(ppd, nullptr);
  EXPECT_STREQ(GetOptionChoiceCode("LevelsRed", ppd), "5.5");
  EXPECT_EQ(GetOptionChoiceIndex("LevelsRed", ppd), 5);
  EXPECT_EQ(GetOptionChoiceIndexf("LevelsRed", ppd), 5.5F);
  ppdClose(ppd);
}

TEST(OptionLookup, WhatIsAbsentHasNoCode) {
  const OpenPpd ppd(Options{});
  EXPECT_EQ(GetOptionChoiceCode("LevelsRed", ppd), nullptr);
  EXPECT_EQ(GetOptionChoiceCode(nullptr, ppd), nullptr);
  EXPECT_EQ(GetOptionChoiceCode("LevelsRed", nullptr), nullptr);
  EXPECT_EQ(GetOptionChoiceIndex("LevelsRed", ppd), -1);
  EXPECT_EQ(GetOptionChoiceIndexf("LevelsRed", ppd), -1.0F);
}

TEST(OptionGroups, DoNothingWithoutARecordOrAPpd) {
  const OpenPpd ppd(
      Options{{"AnticlockwiseRotate", "3"}, {"RedMinValue", "9"}, {"HorizontalOffsetValue", "2"}});
  tagOEMCFG record = {};
  InitRotate(&record, nullptr);
  InitHorizontalOffsetValue(&record, nullptr);
  InitMinColorOffset(&record, nullptr);
  InitMaxColorOffset(&record, nullptr);
  EXPECT_EQ(+record.sRotation, 0);
  EXPECT_EQ(+record.sHrzOffset, 0);
  InitRotate(nullptr, ppd);
  InitMinColorOffset(nullptr, ppd);
  InitHorizontalOffsetValue(nullptr, ppd);
  InitRotate(&record, ppd);
  EXPECT_EQ(+record.sRotation, 3);
}

}  // namespace
}  // namespace velka::testing
