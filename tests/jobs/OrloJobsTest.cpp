// Jobs of the Orlo model, byte for byte against its literal pipeline and encoders.
#include <gtest/gtest.h>

#include <algorithm>

#include "jobs/JobFixture.h"
#include "orlo/LiteralEncoder.h"
#include "orlo/LiteralPipeline.h"
#include "reference/ReferenceDispatcher.h"

namespace velka::testing {
namespace {

using PpdOptions = std::vector<std::pair<std::string, std::string>>;

tagOEMCFG orloOptions() {
  tagOEMCFG options = reference::defaultOptions();
  options.minColorOffset.rgbRed = 150;
  options.sModel = 2;
  return options;
}

orlotest::ModeRow modeOf(int xdpi, int ydpi) {
  const auto& modes = orlotest::allModes();
  const auto row = std::find_if(modes.begin(), modes.end(), [=](const orlotest::ModeRow& m) {
    return m.dpi.horizontal == xdpi && m.dpi.vertical == ydpi;
  });
  return row == modes.end() ? orlotest::ModeRow{{0, 0}, 0} : *row;
}

orlotest::DotPage halftoned(const reference::OutputPage& page, const tagOEMCFG& options) {
  orlotest::Bitmap bitmap(page.image.width, page.image.height,
                          page.image.stride - size_t{3} * static_cast<size_t>(page.image.width));
  bitmap.bytes = page.image.bytes;
  const auto planes =
      orlotest::separateLiterally(bitmap, orlotest::configOf(options), page.yResolution, 2);
  orlotest::DotPage dots(page.image.width, page.image.height);
  if (planes.black.hasData) dots.black = planes.black;
  if (planes.red.hasData) dots.red = planes.red;
  return dots;
}

// The commands of one page, its start and its form feed included.
Bytes pageStream(const RasterPage& page, const tagOEMCFG& options, reference::DeviceState& device) {
  const reference::OutputPage out =
      reference::layOutPage(reference::readRaster(forReference(page)), options, device);
  Bytes bytes = out.startCommands;
  const auto mode = modeOf(out.printQuality, out.yResolution);
  if (out.image.width > 0 && out.image.height > 0 && mode.dpi.horizontal != 0) {
    const orlotest::DotPage dots = halftoned(out, options);
    if (dots.black.top >= 0 || dots.red.top >= 0) {
      const Bytes commands =
          orlotest::encodeLiterally(dots, orlotest::Feed::Back, options.SplitBlackRed == 1, mode)
              .commands;
      bytes.insert(bytes.end(), commands.begin(), commands.end());
    }
  }
  bytes.push_back(0x0C);
  return bytes;
}

Bytes expectedOrloStream(const tagOEMCFG& options, const std::vector<RasterPage>& pages) {
  const cups_page_header2_t& first = pages.front().header;
  reference::DeviceState device;
  device.printQuality = static_cast<int16_t>(first.HWResolution[0]);
  device.yResolution = static_cast<int16_t>(first.HWResolution[1]);
  device.width = static_cast<int32_t>(first.cupsWidth);
  device.source.horzRes = first.cupsWidth;
  device.source.vertRes = first.cupsHeight;
  device.source.sizeX = static_cast<int32_t>(first.cupsWidth);
  device.source.sizeY = static_cast<int32_t>(first.cupsHeight);
  Bytes bytes;
  for (const RasterPage& page : pages) {
    const Bytes one = pageStream(page, options, device);
    bytes.insert(bytes.end(), one.begin(), one.end());
  }
  bytes.insert(bytes.end(), {0x1B, '@'});
  return bytes;
}

FilterResult runOrlo(const std::string& ppdPath, const std::string& jobOptions,
                     const std::vector<RasterPage>& pages) {
  FilterJob job;
  job.ppd = ppdPath;
  job.arguments[4] = jobOptions;
  job.input = rasterStream(pages);
  return runFilter(kFilter, job);
}

void expectOrloJob(const PpdOptions& ppdOptions, const tagOEMCFG& options,
                   const std::vector<RasterPage>& pages) {
  const TempFile ppd(ppdText({2, ppdOptions, false}));
  const FilterResult result = runOrlo(ppd.path(), "", pages);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(pages.size()));
  EXPECT_TRUE(result.output == expectedOrloStream(options, pages))
      << result.output.size() << " bytes against " << expectedOrloStream(options, pages).size();
}

TEST(OrloJobs, EveryResolutionPairWholeAndSplit) {
  for (const orlotest::ModeRow& mode : orlotest::allModes()) {
    for (const int split : {0, 1}) {
      SCOPED_TRACE(std::to_string(mode.dpi.horizontal) + " x " + std::to_string(mode.dpi.vertical) +
                   (split == 1 ? " split" : ""));
      tagOEMCFG options = orloOptions();
      options.SplitBlackRed = static_cast<int16_t>(split);
      expectOrloJob({{"SplitBlackRed", std::to_string(split)}}, options,
                    {inkedPage(rgbHeader(140, 160, static_cast<unsigned>(mode.dpi.horizontal),
                                         static_cast<unsigned>(mode.dpi.vertical)),
                               31)});
    }
  }
}

TEST(OrloJobs, PagesThatDifferAreEachPrintedRight) {
  const cups_page_header2_t header = rgbHeader(90, 120, 360, 360);
  for (const int split : {0, 1}) {
    tagOEMCFG options = orloOptions();
    options.SplitBlackRed = static_cast<int16_t>(split);
    expectOrloJob({{"SplitBlackRed", std::to_string(split)}}, options,
                  {inkedPage(header, 32), whitePage(header), inkedPage(header, 33)});
  }
}

TEST(OrloJobs, AWhitePageIsItsStartAndItsFormFeed) {
  const TempFile ppd(ppdText({2, {}, false}));
  const FilterResult result = runOrlo(ppd.path(), "", {whitePage(rgbHeader(40, 180))});
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 6, 0x0C, 0x1B, '@'}));
}

TEST(OrloJobs, AnUnsupportedPairIsItsStartAndItsFormFeed) {
  const TempFile ppd(ppdText({2, {}, false}));
  const FilterResult result = runOrlo(ppd.path(), "", {inkedPage(rgbHeader(40, 180, 75, 180), 34)});
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 6, 0x0C, 0x1B, '@'}));
}

TEST(OrloJobs, AnOffsetBeyondThePageStillFeedsTheForm) {
  const TempFile ppd(
      ppdText({2, {{"HorizontalOffset", "1"}, {"HorizontalOffsetValue", "500"}}, false}));
  const FilterResult result = runOrlo(ppd.path(), "", {inkedPage(rgbHeader(40, 180), 34)});
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 6, 0x0C, 0x1B, '@'}));
}

TEST(OrloJobs, LevelsBelowZeroPrintWhatTheirCurveWrapsTo) {
  tagOEMCFG options = orloOptions();
  options.LevelsBlack = -21;
  options.LevelsRed = -6;
  expectOrloJob({{"LevelsBlack", "-7"}, {"LevelsRed", "-2"}}, options,
                {inkedPage(rgbHeader(70, 110), 38)});
}

// Nothing can be placed at 0 dpi: moves are none, and positions the low bytes of the
// lowest integer.
TEST(OrloJobs, APageAtZeroDpiPrintsItsRunsAtColumnZero) {
  RasterPage page = whitePage(rgbHeader(40, 60, 0, 0));
  std::fill_n(page.lines[20].begin() + 90, 3, uint8_t{0});
  const TempFile ppd(ppdText({2, {}, false}));
  Bytes expected = {0x1B, '@', 0x1B, '2', 0x1B, 'C', 0, 0x1B, 'r', 2};
  expected.insert(expected.end(), {0x1B, '(', 'U', 1, 0, 10, 0x1B, '(', 'U', 1, 0, 60});
  expected.insert(expected.end(), {0x1B, '$', 0, 0, 0x1B, '*', 0, 10, 0, 0x02});
  expected.insert(expected.end(), 29, 0);
  expected.insert(expected.end(), {0x0C, 0x1B, '@'});
  EXPECT_EQ(runOrlo(ppd.path(), "", {page}).output, expected);
}

TEST(OrloJobs, CopiesAreLeftToThePrintSystem) {
  cups_page_header2_t header = rgbHeader(60, 80);
  header.NumCopies = 3;
  expectOrloJob({}, orloOptions(), {inkedPage(header, 35)});
}

TEST(OrloJobs, RotationsAndOffsetsApply) {
  tagOEMCFG options = orloOptions();
  options.sRotation = 1;
  options.sHrzOffset = 20;
  expectOrloJob({{"AnticlockwiseRotate", "1"}, {"HorizontalOffsetValue", "2"}}, options,
                {inkedPage(rgbHeader(70, 110), 36)});
}

void expectShippedPpd(const std::string& ppd, const std::string& jobOptions, int16_t colours,
                      int16_t split) {
  SCOPED_TRACE(jobOptions);
  tagOEMCFG options = orloOptions();
  options.OutputColorType = colours;
  options.SplitBlackRed = split;
  const std::vector<RasterPage> pages = {inkedPage(rgbHeader(100, 90), 37)};
  const FilterResult result = runOrlo(ppd, jobOptions, pages);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(1));
  EXPECT_TRUE(result.output == expectedOrloStream(options, pages));
}

// The PPD that is shipped, with options of the job on top.
TEST(OrloJobs, TheShippedPpdPrints) {
  const std::string ppd = std::string(VELKA_PPD_FOLDER) + "/velka-orlo.ppd";
  if (TempFile::exists(ppd)) {
    expectShippedPpd(ppd, "", 3, 0);
    expectShippedPpd(ppd, "SplitBlackRed=1", 3, 1);
    expectShippedPpd(ppd, "OutputColorType=1", 1, 0);
    expectShippedPpd(ppd, "OutputColorType=2 SplitBlackRed=1", 2, 1);
  } else {
    GTEST_SKIP() << "built without PPDs";
  }
}

}  // namespace
}  // namespace velka::testing
