// The options that the device has beyond those of its colours: halftone and paper end.
#include <gtest/gtest.h>

#include <cstring>

#include "InitalizeOemCfg.h"
#include "support/OpenPpd.h"

namespace velka::testing {
namespace {

tagOEMCFG optionsFrom(const Options& options, int modelNumber = 1) {
  const OpenPpd ppd(options, modelNumber);
  tagOEMCFG record = {};
  InitalizeOemCfg(&record, ppd, nullptr);
  return record;
}

TEST(PrintOptions, EveryKeywordReachesItsField) {
  const tagOEMCFG o = optionsFrom({{"HalftoneBlack", "1"},
                                   {"HalftoneRed", "6"},
                                   {"DiffusionThreshold", "96"},
                                   {"DotWeight", "7"},
                                   {"PaperEnd", "2"},
                                   {"PaperEndFirstPages", "5"},
                                   {"PaperEndSecondPages", "3"}});
  EXPECT_EQ(+o.sDitherBlack, 1);
  EXPECT_EQ(+o.sDitherRed, 6);
  EXPECT_EQ(+o.sDiffusionThreshold, 96);
  EXPECT_EQ(+o.sDotErrorFactor, 7);
  EXPECT_EQ(+o.sEjectMode, 2);
  EXPECT_EQ(+o.sEjectFirstCount, 5);
  EXPECT_EQ(+o.sEjectSecondCount, 3);
}

TEST(PrintOptions, MinusOneKeepsTheBuiltInValues) {
  for (const int model : {1, 2}) {
    tagOEMCFG expected = defaultOemdev[model == 2 ? 1 : 0];
    expected.sConfigured = 1;
    const tagOEMCFG o = optionsFrom({{"HalftoneBlack", "-1"},
                                     {"HalftoneRed", "-1"},
                                     {"DiffusionThreshold", "-1"},
                                     {"DotWeight", "-1"},
                                     {"PaperEnd", "-1"},
                                     {"PaperEndFirstPages", "-1"},
                                     {"PaperEndSecondPages", "-1"}},
                                    model);
    EXPECT_EQ(std::memcmp(&o, &expected, sizeof o), 0);
  }
}

TEST(PrintOptions, CodesWrapToTheWidthOfTheirField) {
  const tagOEMCFG o = optionsFrom({{"HalftoneBlack", "65537"}, {"PaperEndFirstPages", "40000"}});
  EXPECT_EQ(+o.sDitherBlack, 1);
  EXPECT_EQ(+o.sEjectFirstCount, -25536);
}

TEST(PrintOptions, DoNothingWithoutARecordOrAPpd) {
  constexpr decltype(&InitPaperEnd) kGroups[] = {
      InitHalftoneBlack, InitHalftoneRed,        InitDiffusionThreshold, InitDotWeight,
      InitPaperEnd,      InitPaperEndFirstPages, InitPaperEndSecondPages};
  const OpenPpd ppd(Options{{"HalftoneBlack", "1"}});
  tagOEMCFG record = {};
  const tagOEMCFG empty = {};
  for (const auto group : kGroups) {
    group(nullptr, ppd);
    group(&record, nullptr);
  }
  EXPECT_EQ(std::memcmp(&record, &empty, sizeof record), 0);
}

}  // namespace
}  // namespace velka::testing
