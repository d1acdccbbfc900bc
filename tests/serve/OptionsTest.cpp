#include <gtest/gtest.h>

#include "PrinterOptions.h"

namespace velka::serve {
namespace {

const std::string kStandard = std::string(VELKA_PPDS) + "/velka-standard.ppd";

std::string textOf(const Settings& settings) {
  std::string text;
  for (const auto& [name, value] : settings) text += name + "=" + value + " ";
  return text;
}

std::string readText(const PrinterOptions& options, const Pairs& asked) {
  const auto read = options.read(asked);
  if (const auto* refusal = std::get_if<Refusal>(&read)) return refusal->why;
  return textOf(std::get<Settings>(read));
}

TEST(PrinterOptions, StandInTheOrderAndGroupsOfDialogs) {
  const PrinterOptions options(kStandard, "");
  ASSERT_EQ(options.trouble(), std::nullopt);
  std::vector<std::string> first;
  for (const OptionGroup& group : options.groups()) first.push_back(group.options[0].keyword);
  EXPECT_EQ(first, (std::vector<std::string>{"PageSize", "OutputColorType", "BrightnessBlack",
                                             "HorizontalOffset", "DotPlacement"}));
  const PrinterOption* bound = options.find("RedMinValue");
  ASSERT_NE(bound, nullptr);
  EXPECT_EQ(bound->usual, "130");
  EXPECT_EQ(bound->choices.size(), 52U);
  EXPECT_EQ(options.find("OldNames"), nullptr);
  EXPECT_EQ(options.find("PageRegion"), nullptr);
  EXPECT_EQ(options.find("OutputColorType")->choices.size(), 3U) << "the old names are hidden";
}

TEST(PrinterOptions, TakeThePpdsChoicesAloneAndByLetter) {
  const PrinterOptions options(kStandard, "");
  EXPECT_EQ(readText(options, {{"RedMinValue", "90"}, {"PageSize", "A5"}}),
            "PageSize=A5 RedMinValue=90 ");
  EXPECT_EQ(readText(options, {{"RedMinValue", "130"}}), "");
  EXPECT_EQ(readText(options, {{"RedMinValue", "91"}}), "RedMinValue has no choice '91'");
  EXPECT_EQ(readText(options, {{"OutputColorType", "1"}}), "OutputColorType has no choice '1'");
  EXPECT_EQ(readText(options, {{"redminvalue", "90"}}), "the PPD has no option redminvalue");
  EXPECT_EQ(readText(options, {{"job-name", "x"}}), "the PPD has no option job-name");
}

TEST(PrinterOptions, BeginWithTheCommandLinesAndKeepWhatThePpdDoesNotKnow) {
  const PrinterOptions options(kStandard,
                               "OutputColorType=1 redminvalue=90 PageSize=Custom.80x200mm "
                               "number-up=2 job-name='a b' LevelsBlack=10");
  EXPECT_EQ(textOf(options.initial()),
            "PageSize=Custom.80x200mm OutputColorType=Black RedMinValue=90 ");
  EXPECT_EQ(options.jobText({{"RedMinValue", "95"}}), "job-name=a\\ b number-up=2 RedMinValue=95");
  EXPECT_EQ(readText(options, {{"PageSize", "Custom.80x200mm"}}), "PageSize=Custom.80x200mm ");
}

TEST(PrinterOptions, SayWhatTheRasterDependsOn) {
  const PrinterOptions options(kStandard, "");
  const Settings settings = {{"PageSize", "A5"},
                             {"Resolution", "360dpi"},
                             {"RedMinValue", "90"},
                             {"PdfPreprocess", "yes"}};
  EXPECT_EQ(textOf(options.ofRaster(settings)), "PageSize=A5 Resolution=360dpi PdfPreprocess=yes ");
}

TEST(PrinterOptions, BecomeTheFiltersOwnRecord) {
  const PrinterOptions options(kStandard, "BrightnessRed=120");
  const tagOEMCFG record = options.record({{"RedMinValue", "90"}, {"OutputColorType", "Black"}});
  EXPECT_EQ(record.minColorOffset.rgbRed, 90);
  EXPECT_EQ(record.OutputColorType, 1);
  EXPECT_EQ(record.BrightnessRed, 0) << "where the page begins is not what it has later";
  EXPECT_EQ(options.record(options.initial()).BrightnessRed, 40);
}

TEST(PrinterOptions, ChangeOneByOne) {
  const PrinterOptions options(kStandard, "");
  const Settings settings = {{"RedMinValue", "90"}};
  EXPECT_EQ(textOf(changed(options, settings, "RedMaxValue", "200")),
            "RedMinValue=90 RedMaxValue=200 ");
  EXPECT_EQ(textOf(changed(options, settings, "RedMinValue", "130")), "");
  EXPECT_EQ(valueOf(options, settings, "RedMinValue"), "90");
  EXPECT_EQ(valueOf(options, settings, "RedMaxValue"), "255");
}

}  // namespace
}  // namespace velka::serve
