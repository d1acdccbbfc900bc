#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <set>

#include "FilterRun.h"
#include "JobOptions.h"
#include "Model.h"
#include "OptionTexts.h"
#include "PageRaster.h"
#include "PdfDrawing.h"
#include "SavedState.h"
#include "Spool.h"
#include "support/TestPdf.h"

namespace velka::app {
namespace {

TEST(Model, BothAreReadFromTheirPpds) {
  ASSERT_EQ(models().size(), 2U);
  const Model* standard = modelOf("velka_standard");
  const Model* orlo = modelOf("velka_orlo");
  ASSERT_NE(standard, nullptr);
  ASSERT_NE(orlo, nullptr);
  EXPECT_EQ(standard->makeAndModel, "Velka Standard");
  EXPECT_TRUE(standard->copiesByPrinter);
  EXPECT_FALSE(orlo->copiesByPrinter);
  EXPECT_EQ(standard->option("RedMinValue")->defaultChoice, "130");
  EXPECT_EQ(orlo->option("RedMinValue")->defaultChoice, "150");
  EXPECT_EQ(orlo->option("PaperEnd"), nullptr);
  EXPECT_EQ(standard->resolutions.size(), 10U);
  EXPECT_EQ(modelOf("another"), nullptr);
}

TEST(Model, OldNamesOfChoicesAreNotOffered) {
  const VendorOption* inks = modelOf("velka_standard")->option("OutputColorType");
  ASSERT_EQ(inks->choices.size(), 3U);
  EXPECT_EQ(inks->choices[1].name, "Black");
}

TEST(Model, EachPaperHasANameOfItsOwnAndTheSizeThatThePpdSays) {
  for (const Model& model : models()) {
    std::set<std::string> names;
    for (const Paper& paper : model.papers) names.insert(paper.media);
    EXPECT_EQ(names.size(), 34U);
    EXPECT_EQ(model.papers.size(), 34U);
    EXPECT_EQ(model.defaultPaper.media, "iso_a4_210x297mm");
    EXPECT_EQ(model.largest.media, "custom_max_381x1079.5mm");
    EXPECT_TRUE(names.contains("om_roll-80x200mm_80x200mm"));
  }
}

TEST(Model, OptionsAndChoicesHaveTheirTexts) {
  const std::string english = stringsOf(models().front(), "en");
  EXPECT_NE(english.find("\"OutputColorType.Black\" = \"Black only\";\n"), std::string::npos);
  const std::string german = stringsOf(models().front(), "de");
  EXPECT_NE(german.find("\"OutputColorType.Black\" = \"Nur Schwarz\";\n"), std::string::npos);
  EXPECT_NE(german.find("\"RedMinValue\" = \"Bereich Rot, von\";\n"), std::string::npos);
  EXPECT_NE(german.find("\"RedMinValue.150\" = \"150\";\n"), std::string::npos);
  EXPECT_EQ(std::ranges::count(german, '\n'), std::ranges::count(english, '\n'));
  EXPECT_EQ(stringsOf(models().front(), "xx"), english);
}

TEST(Model, LanguagesAreThoseOfThePpd) {
  for (const Model& model : models()) {
    const std::vector<std::string> languages = languagesOf(model);
    EXPECT_EQ(languages.size(), 10U);
    EXPECT_EQ(languages.front(), "en");
    EXPECT_NE(std::ranges::find(languages, "zh_CN"), languages.end());
  }
}

TEST(Resolution, IsReadFromAChoicesName) {
  EXPECT_EQ(resolutionOf("180dpi"), (Resolution{180, 180}));
  EXPECT_EQ(resolutionOf("120x60dpi"), (Resolution{120, 60}));
  for (const char* wrong : {"", "dpi", "x60dpi", "120x60", "120x60xdpi", "a120dpi", "120:60dpi"})
    EXPECT_EQ(resolutionOf(wrong), Resolution{}) << wrong;
}

TEST(FilterOptions, NothingThatIsNoChoiceReachesThem) {
  const Model& model = *modelOf("velka_standard");
  JobChoices choices;
  choices.vendor = {{"RedMinValue", "90"}, {"HalftoneRed", "x PaperEnd=T0"}, {"Unknown", "1"}};
  const std::string text = filterOptions(model, choices);
  EXPECT_NE(text.find(" RedMinValue=90 "), std::string::npos);
  EXPECT_NE(text.find(" HalftoneRed=ErrorDiffusion"), std::string::npos);
  EXPECT_NE(text.find(" PaperEnd=None"), std::string::npos);
  EXPECT_EQ(text.find("Unknown"), std::string::npos);
  EXPECT_EQ(text.find("Resolution"), std::string::npos);
}

TEST(FilterOptions, AMonochromeJobPrintsBlackUnlessItNamesTheInks) {
  const Model& model = *modelOf("velka_orlo");
  JobChoices choices;
  choices.monochrome = true;
  EXPECT_TRUE(filterOptions(model, choices).starts_with("OutputColorType=Black "));
  choices.inkStated = true;
  choices.vendor = {{"OutputColorType", "Red"}};
  EXPECT_TRUE(filterOptions(model, choices).starts_with("OutputColorType=Red "));
}

TEST(FilterOptions, PagesComeFromAPdfOnlyWhereThereIsOne) {
  JobChoices choices;
  choices.vendor = {{"PdfPreprocess", "yes"}};
  EXPECT_NE(filterOptions(models()[0], choices).find("PdfPreprocess=no"), std::string::npos);
  choices.pdfCopy = true;
  EXPECT_NE(filterOptions(models()[0], choices).find("PdfPreprocess=yes"), std::string::npos);
}

cups_page_header2_t pageOf(cups_cspace_t space, unsigned bits, unsigned width) {
  cups_page_header2_t page = {};
  page.cupsColorSpace = space;
  page.cupsBitsPerColor = std::min(bits, 8U);
  page.cupsBitsPerPixel = bits;
  page.cupsWidth = width;
  page.cupsHeight = 2;
  return page;
}

std::vector<uint8_t> rgbOf(const cups_page_header2_t& page, std::vector<uint8_t> line) {
  std::vector<uint8_t> rgb(size_t{page.cupsWidth} * 3, 1);
  toRgb(page, line, rgb);
  return rgb;
}

TEST(PageRaster, GreysAndBlackBecomeRedGreenAndBlue) {
  using Bytes = std::vector<uint8_t>;
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_SRGB, 24, 2), {1, 2, 3, 4, 5, 6}), (Bytes{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_SW, 8, 2), {7, 9}), (Bytes{7, 7, 7, 9, 9, 9}));
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_K, 8, 2), {0, 255}), (Bytes{255, 255, 255, 0, 0, 0}));
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_K, 1, 2), {0x40}), (Bytes{255, 255, 255, 0, 0, 0}));
}

TEST(PageRaster, WhatALineLacksStaysWhite) {
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_SRGB, 24, 2), {1, 2, 3}).back(), 255);
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_SW, 8, 3), {7}).back(), 255);
  EXPECT_EQ(rgbOf(pageOf(CUPS_CSPACE_K, 1, 20), {0xFF}).back(), 255);
}

TEST(PageRaster, KindsThatDoNotPrintHaveNoHeader) {
  EXPECT_TRUE(filterHeader(pageOf(CUPS_CSPACE_SRGB, 24, 5), 1).has_value());
  EXPECT_FALSE(filterHeader(pageOf(CUPS_CSPACE_CMYK, 32, 5), 1).has_value());
  EXPECT_FALSE(filterHeader(pageOf(CUPS_CSPACE_SRGB, 48, 5), 1).has_value());
  EXPECT_FALSE(filterHeader(pageOf(CUPS_CSPACE_SRGB, 24, 0), 1).has_value());
}

// systemd makes its folder below /var/lib a link, which nobody else may follow.
TEST(SpoolFolder, OfRootIsNotThatOfTheUnit) {
  if (geteuid() != 0) GTEST_SKIP() << "takes root";
  EXPECT_EQ(usualSpoolFolder(), "/var/spool/velka-printer-app");
}

TEST(SpoolFolder, ThatIsALinkIsRefused) {
  const testing::TempFolder folder;
  const std::string real = folder / "real";
  const std::string link = folder / "link";
  EXPECT_EQ(useSpoolFolder(real), "");
  ASSERT_EQ(symlink(real.c_str(), link.c_str()), 0);
  EXPECT_EQ(useSpoolFolder(link), link + " is no folder");
}

TEST(SavedState, WhatWasBeingPrintedWaitsAgainAndNothingElseIsOther) {
  const std::string before = R"(<Printer id="1" state="5">
Location state="5"
Job id="1" name="a" state="5" created="55"
Job id="2" name="a \" state=\"5" format="\\" state="5" state_reasons="5"
)";
  std::string after = before;
  for (const char* begun : {R"("a" state="5")", R"("\\" state="5")"}) {
    const size_t at = after.find(begun);
    ASSERT_NE(at, std::string::npos);
    after[at + std::string(begun).size() - 2] = '3';
  }
  EXPECT_EQ(withJobsBegunAnew(before), after);
  EXPECT_EQ(withJobsBegunAnew(after), after);
}

TEST(SavedState, BrokenLinesStayAsTheyAre) {
  for (const char* line :
       {"", "Job", "Job ", "Job state", "Job state=", "Job state=\"", "Job state=\"5",
        "Job state=\"5\\", "Job state=\"55\"", "Job x=\"state=\\\"5\\\"\"\n\n", "Job =\"5\""})
    EXPECT_EQ(withJobsBegunAnew(line), line);
}

TEST(DrawingJob, ItsWordsAreReadBack) {
  DrawingJob job;
  job.dpi = {90, 60};
  job.paper = {8000, 20000};
  job.wishes = {Scaling::Fill, Turn::ReverseLandscape, true};
  job.pages = {{2, 3}, {7, 7}};
  job.mostPages = 5;
  DrawingJob read;
  ASSERT_TRUE(readWords(wordsOf(job), read));
  EXPECT_EQ(wordsOf(read), wordsOf(job));
  for (const char* wrong : {"x", "x=a", "pages=3", "x=-1"})
    EXPECT_FALSE(readWords({"y=90", "width=100", "height=100", wrong}, read)) << wrong;
}

// Programs that stand in for the filter.
struct Run {
  std::string commands;
  std::string said;
  std::string end;
};

Run runFilter(const std::string& program) {
  std::signal(SIGPIPE, SIG_IGN);
  Run run;
  FilterRun filter(
      [&](std::span<const uint8_t> bytes) {
        run.commands.append(bytes.begin(), bytes.end());
        return true;
      },
      [&](const std::string& line) { run.said += line + ";"; });
  EXPECT_EQ(filter.start({program, "1", "user", "title", "", "a ppd"}), "");
  const auto header = filterHeader(pageOf(CUPS_CSPACE_SRGB, 24, 1000), 1);
  const std::vector<uint8_t> line(3000, 7);
  bool going = true;
  for (int page = 0; page < 100 && going; ++page) {
    going = filter.startPage(*header) && filter.writeLine(line) && filter.endPage();
  }
  run.end = filter.finish();
  return run;
}

TEST(FilterRun, AFilterThatCannotBeStartedSaysSo) {
  FilterRun filter([](std::span<const uint8_t>) { return true; }, [](const std::string&) {});
  EXPECT_NE(filter.start({"/nowhere/filter", "1", "", "", "", ""}), "");
}

TEST(FilterRun, OneThatReadsNothingAndEndsIsTold) {
  EXPECT_EQ(runFilter("/bin/false").end, "exited with status 1");
  EXPECT_EQ(runFilter("/bin/true").end, "");
}

}  // namespace
}  // namespace velka::app
