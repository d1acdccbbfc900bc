// Jobs of the standard model, byte for byte against the literal reference.
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include "StreamStats.h"
#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

using PpdOptions = std::vector<std::pair<std::string, std::string>>;

// Runs a job with the PPD's options and compares it with the reference's record.
void expectJob(const PpdOptions& ppd, const tagOEMCFG& options,
               const std::vector<RasterPage>& pages) {
  const FilterResult result = runJob(ppd, rasterStream(pages));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(pages.size()));
  expectSameStream(result.output, expectedStream(options, pages));
}

const tagOEMCFG kDefaults = reference::defaultOptions();

RasterPage solidPage(const cups_page_header2_t& header, uint8_t r, uint8_t g, uint8_t b) {
  RasterPage page = whitePage(header);
  for (Bytes& line : page.lines)
    for (size_t i = 0; i + 3 <= line.size(); i += 3) {
      line[i] = r;
      line[i + 1] = g;
      line[i + 2] = b;
    }
  return page;
}

size_t dotsOf(const Bytes& stream, size_t colour) {
  return decode::readStats(stream, decode::Model::Standard, {}, {}).dots.at(colour);
}

TEST(StandardJobs, OneMixedPageOnStandardInput) {
  expectJob({}, kDefaults, {inkedPage(rgbHeader(203, 150), 1)});
}

TEST(StandardJobs, ThreePagesOfDifferentContent) {
  expectJob({}, kDefaults,
            {inkedPage(rgbHeader(120, 90), 2), whitePage(rgbHeader(120, 90)),
             inkedPage(rgbHeader(120, 90), 3)});
}

TEST(StandardJobs, LaterPagesOfAnotherSizeKeepTheFirstPagesWidth) {
  expectJob({}, kDefaults,
            {inkedPage(rgbHeader(120, 90), 2), inkedPage(rgbHeader(90, 130), 4),
             inkedPage(rgbHeader(150, 30), 6)});
}

TEST(StandardJobs, AFileAsSixthArgumentPrintsLikeStandardInput) {
  const RasterPage page = inkedPage(rgbHeader(100, 60), 8);
  const Bytes stream = rasterStream({page});
  const TempFile file({reinterpret_cast<const char*>(stream.data()), stream.size()});
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.arguments.push_back(file.path());
  job.ppd = ppd.path();
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expectedStream(kDefaults, {page}));
}

TEST(StandardJobs, EveryResolutionPairOfTheHeadAndOthers) {
  for (const auto& [x, y] : std::vector<std::pair<unsigned, unsigned>>{{60, 180},
                                                                       {90, 180},
                                                                       {120, 180},
                                                                       {180, 180},
                                                                       {360, 180},
                                                                       {360, 360},
                                                                       {60, 60},
                                                                       {80, 60},
                                                                       {90, 60},
                                                                       {120, 60},
                                                                       {720, 360},
                                                                       {720, 720},
                                                                       {75, 180},
                                                                       {180, 90},
                                                                       {0, 0},
                                                                       {180, 0},
                                                                       {0, 180},
                                                                       {720, 0}}) {
    SCOPED_TRACE(std::to_string(x) + " x " + std::to_string(y));
    expectJob({}, kDefaults, {inkedPage(rgbHeader(130, 110, x, y), 10)});
  }
}

TEST(StandardJobs, LevelsBelowZeroPrintWhatTheirCurveWrapsTo) {
  tagOEMCFG options = kDefaults;
  options.LevelsBlack = -21;
  options.LevelsRed = -6;
  expectJob({{"LevelsBlack", "-7"}, {"LevelsRed", "-2"}}, options,
            {inkedPage(rgbHeader(120, 90), 2)});
}

TEST(StandardJobs, DistancesThatFitNoIntegerEqualTheReference) {
  tagOEMCFG options = kDefaults;
  options.sHrzOffset = INT32_MIN;
  options.sVtcOffset = INT32_MIN;
  for (const int direction : {0, 1}) {
    options.sVtcDir = direction;
    const RasterPage page = inkedPage(rgbHeader(120, 90, 360, 360), 2);
    expectJob({{"HorizontalOffsetValue", "nan"},
               {"VerticalOffsetValue", "-1e30"},
               {"VerticalOffset", std::to_string(direction)}},
              options, {page, page});
  }
}

TEST(StandardJobs, AnUnsupportedPairPrintsNothingButItsStartAndEnd) {
  const FilterResult result = runJob({}, rasterStream({inkedPage(rgbHeader(50, 60, 75, 180), 10)}));
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 2, 0x1B, '@'}));
}

TEST(StandardJobs, CompressedAndPwgStreamsPrintTheSame) {
  const RasterPage page = inkedPage(rgbHeader(100, 60), 8);
  const Bytes plain = runJob({}, rasterStream({page})).output;
  expectSameStream(runJob({}, rasterStream({page}, CUPS_RASTER_WRITE_COMPRESSED)).output, plain);
  expectSameStream(runJob({}, rasterStream({page}, CUPS_RASTER_WRITE_PWG)).output, plain);
}

TEST(StandardJobs, AStreamCutOffAnywhereLeavesTheRestOfItsPageWhite) {
  const RasterPage page = inkedPage(rgbHeader(60, 100), 12);
  const Bytes whole = rawStream({page});
  const size_t header = 4 + sizeof(cups_page_header2_t);
  for (const size_t lines : {0U, 1U, 10U, 99U}) {
    for (const size_t extra : {0U, 77U}) {
      const Bytes cut(whole.begin(),
                      whole.begin() + static_cast<ptrdiff_t>(header + lines * 180 + extra));
      RasterPage shown = page;
      shown.lines.resize(lines);
      const FilterResult result = runJob({}, cut);
      EXPECT_EQ(result.status, 0);
      expectSameStream(result.output, expectedStream(kDefaults, {shown}));
    }
  }
}

TEST(StandardJobs, AWhitePageIsItsStartAndTheEndOfTheJob) {
  const FilterResult result = runJob({}, rasterStream({whitePage(rgbHeader(100, 180))}));
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 6, 0x1B, '@'}));
}

TEST(StandardJobs, ANearWhitePageHasBandsButNoOutput) {
  const RasterPage page = solidPage(rgbHeader(100, 180), 254, 254, 254);
  const FilterResult result = runJob({}, rasterStream({page}));
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 6, 0x1B, '@'}));
  expectJob({}, kDefaults, {page});
}

TEST(StandardJobs, RedOnly) {
  const RasterPage page = solidPage(rgbHeader(40, 48), 255, 0, 0);
  expectJob({}, kDefaults, {page});
  const Bytes stream = runJob({}, rasterStream({page})).output;
  EXPECT_EQ(dotsOf(stream, 0), 0U);
  EXPECT_EQ(dotsOf(stream, 1), 39U * 48U);  // a block is one column short
}

TEST(StandardJobs, BlackOnly) {
  const RasterPage page = solidPage(rgbHeader(40, 48), 0, 0, 0);
  expectJob({}, kDefaults, {page});
  const Bytes stream = runJob({}, rasterStream({page})).output;
  EXPECT_EQ(dotsOf(stream, 0), 39U * 48U);
  EXPECT_EQ(dotsOf(stream, 1), 0U);
}

TEST(StandardJobs, EachInkAloneAndEachUseOfTheRange) {
  for (const char* type : {"1", "2", "3", "4"}) {
    for (const char* use : {"1", "2", "3"}) {
      tagOEMCFG options = kDefaults;
      options.OutputColorType = static_cast<int16_t>(*type - '0');
      options.ColorRangeUseFor = static_cast<int16_t>(*use - '0');
      expectJob({{"OutputColorType", type}, {"ColorRangeUseFor", use}}, options,
                {inkedPage(rgbHeader(70, 60), 14)});
    }
  }
}

TEST(StandardJobs, TonesOfBothInks) {
  tagOEMCFG options = kDefaults;
  options.BrightnessRed = 40;
  options.ContrastRed = -60;
  options.LevelsRed = 120;
  options.BrightnessBlack = -30;
  options.ContrastBlack = 80;
  options.LevelsBlack = 90;
  expectJob({{"BrightnessRed", "120"},
             {"ContrastRed", "70"},
             {"LevelsRed", "40"},
             {"BrightnessBlack", "85"},
             {"ContrastBlack", "140"},
             {"LevelsBlack", "30"}},
            options, {inkedPage(rgbHeader(90, 70), 16)});
}

TEST(StandardJobs, OffsetsEachWayAndBeyondThePage) {
  for (const auto& [hDir, vDir] :
       std::vector<std::pair<int, int>>{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}}) {
    for (const auto& [millimetres, tenths] :
         std::vector<std::pair<std::string, int>>{{"2.5", 25}, {"300", 3000}}) {
      tagOEMCFG options = kDefaults;
      options.sHrzDir = hDir;
      options.sVtcDir = vDir;
      options.sHrzOffset = tenths;
      options.sVtcOffset = tenths;
      expectJob({{"HorizontalOffset", std::to_string(hDir)},
                 {"VerticalOffset", std::to_string(vDir)},
                 {"HorizontalOffsetValue", millimetres},
                 {"VerticalOffsetValue", millimetres}},
                options, {inkedPage(rgbHeader(80, 90), 18), inkedPage(rgbHeader(80, 90), 19)});
    }
  }
}

TEST(StandardJobs, TheFourRotationsAndOnesThatAreNone) {
  for (const int turns : {0, 1, 2, 3, 4, 7}) {
    tagOEMCFG options = kDefaults;
    options.sRotation = turns;
    options.sHrzOffset = 10;
    expectJob({{"AnticlockwiseRotate", std::to_string(turns)}, {"HorizontalOffsetValue", "1"}},
              options, {inkedPage(rgbHeader(75, 110), 20)});
  }
}

TEST(StandardJobs, CopiesWithAndWithoutCollation) {
  for (const unsigned copies : {1U, 2U, 3U}) {
    for (const cups_bool_t collate : {CUPS_FALSE, CUPS_TRUE}) {
      cups_page_header2_t header = rgbHeader(64, 50);
      header.NumCopies = copies;
      header.Collate = collate;
      expectJob({}, kDefaults, {inkedPage(header, 22), inkedPage(header, 23), whitePage(header)});
    }
  }
}

TEST(StandardJobs, SplitPagesOfEachKindWithCopies) {
  tagOEMCFG options = kDefaults;
  options.SplitBlackRed = 1;
  cups_page_header2_t header = rgbHeader(64, 150);
  header.NumCopies = 2;
  expectJob({{"SplitBlackRed", "1"}}, options,
            {inkedPage(header, 24), solidPage(header, 255, 0, 0), solidPage(header, 0, 0, 0),
             whitePage(header)});
  cups_page_header2_t fine = rgbHeader(64, 150, 360, 360);
  expectJob({{"SplitBlackRed", "1"}}, options, {inkedPage(fine, 25)});
}

TEST(StandardJobs, WithoutAPpdTheAllZeroOptionsPrintNothing) {
  FilterJob job;
  job.ppd = "/nonexistent/velka.ppd";
  job.input = rasterStream({inkedPage(rgbHeader(64, 50), 26)});
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 1, 0x1B, '@'}));
  // CUPS gives its reasons in the user's language.
  EXPECT_EQ(result.errors, std::string("The PPD file could not be opened.") +
                               ppdErrorString(PPD_FILE_OPEN_ERROR) + " on line 0." + finished(1));
}

TEST(StandardJobs, ALongRollPrintsWhole) {
  // 20,000 rows, ink at both ends.
  RasterPage page = whitePage(rgbHeader(40, 20000));
  for (const size_t row : {size_t{0}, size_t{19975}}) page.lines[row].assign(120, 0);
  expectJob({}, kDefaults, {page});
}

// Sanitizers reserve address space of their own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(StandardJobs, MemoryStaysInProportionToThePixels) {
  constexpr size_t kBitmap = size_t{5000} * 3 * 10000;
  constexpr size_t kProgramItself = size_t{200} << 20U;
  const RasterPage page = solidPage(rgbHeader(5000, 10000, 360, 360), 90, 90, 90);
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  job.input = rasterStream({page}, CUPS_RASTER_WRITE_COMPRESSED);
  const FilterResult free = runFilter(kFilter, job);
  job.addressSpace = kBitmap * 5 / 2 + kProgramItself;
  EXPECT_TRUE(runFilter(kFilter, job).output == free.output);
  EXPECT_GT(dotsOf(free.output, 0), kBitmap / 3 / 2);
  // The limit bites: with less than the page and its copy nothing can be printed.
  job.addressSpace = kBitmap * 3 / 2;
  EXPECT_LT(runFilter(kFilter, job).output.size(), size_t{100});
}
#endif

}  // namespace
}  // namespace velka::testing
