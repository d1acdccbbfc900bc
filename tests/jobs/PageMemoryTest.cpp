// What pages may take, and what they take.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

// So many lines of `header`, and a page behind it.
Bytes streamOf(const cups_page_header2_t& header, size_t lines, const RasterPage& behind) {
  const RasterPage first = {header, std::vector<Bytes>(lines, Bytes(header.cupsBytesPerLine, 0))};
  return rawStream({first, behind});
}

FilterResult runWith(const std::string& ppdFile, const Bytes& stream) {
  FilterJob job;
  job.ppd = ppdFile;
  job.input = stream;
  return runFilter(kFilter, job);
}

size_t countOf(const std::string& message) {
  const auto messages = logMessages();
  return static_cast<size_t>(std::count(messages.begin(), messages.end(), message));
}

size_t countStarting(const std::string& start) {
  const auto messages = logMessages();
  return static_cast<size_t>(std::count_if(messages.begin(), messages.end(),
                                           [&](const auto& m) { return m.starts_with(start); }));
}

// Whether a job took little more than one of a small page does. That is asked of the
// system, which also counts what this process had when it made the other. Sanitizers
// keep an eighth of what is asked for.
void expectLittleMemory(const FilterResult& result) {
  constexpr long kLittleKiB = 300 << 10U;
  const TempFile ppd(ppdText({}));
  const FilterResult small = runWith(ppd.path(), rawStream({whitePage(rgbHeader(40, 60))}));
  EXPECT_LT(result.peakKiB, small.peakKiB + kLittleKiB);
}

constexpr const char* kTooLarge =
    "page 1 is not printed: its bitmap of 20000 x 20000 pixels is larger than 1073741824 bytes, "
    "the most that a page may take";

TEST(PageMemory, APageBeyondTheLimitIsReadAndNotPrinted) {
  for (const int model : {1, 2}) {
    const TempFile ppd(ppdText({model, {}, false}));
    const FilterResult result = runWith(ppd.path(), rawStream({{rgbHeader(20000, 20000), {}}}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, (Bytes{0x1B, '@'}));
    EXPECT_EQ(result.errors, finished(1));
    EXPECT_EQ(countOf(kTooLarge), 1U);
    EXPECT_EQ(countOf("curPage is 1, bufStart is 0x0"), 1U);
    expectLittleMemory(result);
  }
}

TEST(PageMemory, TheLinesOfAPageBeyondTheLimitAreConsumed) {
  const TempFile ppd(ppdText({}));
  cups_page_header2_t header = rgbHeader(20000, 20000);
  header.cupsBytesPerLine = 3;
  const RasterPage behind = inkedPage(rgbHeader(20000, 100), 2);
  const FilterResult result = runWith(ppd.path(), streamOf(header, 20000, behind));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
  EXPECT_EQ(countOf(kTooLarge), 1U);
  EXPECT_EQ(countOf("cupsHeight = 100"), 1U);
  EXPECT_GT(result.output.size(), size_t{1000});
}

TEST(PageMemory, TheLargestPageOfThePpdRaisesTheLimit) {
  // 100 x 100 inch at 360 x 360 dpi are 3.9 thousand million bytes; at 180 x 180 dpi
  // they are less than the limit.
  const std::string large = ppdText({}) + "*PaperDimension Huge/Huge: \"7200 7200\"\n";
  const TempFile ppd(large +
                     "*OpenUI *PageSize/Size: PickOne\n*OrderDependency: 10 AnySetup *PageSize\n"
                     "*DefaultPageSize: Huge\n*PageSize Huge/Huge: \"\"\n*CloseUI: *PageSize\n"
                     "*ImageableArea Huge/Huge: \"0 0 7200 7200\"\n");
  const auto refused = [&](unsigned dpi) {
    runWith(ppd.path(), rawStream({{rgbHeader(20000, 20000, dpi, dpi), {}}}));
    return countStarting("page 1 is not printed: its bitmap");
  };
  EXPECT_EQ(refused(180), 1U);
  EXPECT_EQ(refused(360), 0U);
}

TEST(PageMemory, ALaterPageOfTheFirstOnesWidthIsBoundedToo) {
  // 35,000 rows of the first page's width would be 4 thousand million bytes.
  const TempFile ppd(ppdText({}));
  const RasterPage first = {rgbHeader(39000, 1), std::vector<Bytes>(1, Bytes(117000, 0xFF))};
  const RasterPage second = {rgbHeader(3, 35000), std::vector<Bytes>(35000, Bytes(9, 0))};
  const FilterResult result = runWith(ppd.path(), rawStream({first, second}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(countOf("page 2 is not printed: no memory for its output bitmap"), 1U);
  expectLittleMemory(result);
}

TEST(PageMemory, ALineBeyondTheLimitIsNotRead) {
  const TempFile ppd(ppdText({}));
  cups_page_header2_t header = rgbHeader(40, 60);
  header.cupsBytesPerLine = 1200000000;
  const FilterResult result = runWith(ppd.path(), streamOf(rgbHeader(40, 60), 60, {header, {}}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
  EXPECT_EQ(countOf("page 2 is not printed: no memory for its lines of 1200000000 bytes"), 1U);
  expectLittleMemory(result);
}

// Below the limit a page takes what came of it: its bitmap would be 972 million bytes.
TEST(PageMemory, GoesWithTheLinesThatCome) {
  const cups_page_header2_t header = rgbHeader(18000, 18000);
  for (const int model : {1, 2})
    for (const size_t lines : {size_t{0}, size_t{60}}) {
      SCOPED_TRACE(std::to_string(model) + " " + std::to_string(lines));
      const TempFile ppd(ppdText({model, {{"HorizontalOffsetValue", "10"}}, false}));
      RasterPage page = {header, {}};
      for (size_t i = 0; i < lines; ++i) page.lines.push_back(Bytes(54000, i % 7 == 0 ? 0 : 255));
      const FilterResult result = runWith(ppd.path(), rawStream({page}));
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(countStarting("page 1 is not printed"), 0U);
      EXPECT_EQ(result.output.size() > 100, lines > 0);
      expectLittleMemory(result);
    }
}

// Sanitizers reserve address space of their own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(PageMemory, APageThatTheSystemHasNoRoomForIsReadAndNotPrinted) {
  const TempFile ppd(ppdText({}));
  const RasterPage large = whitePage(rgbHeader(6000, 6000));
  const RasterPage behind = inkedPage(rgbHeader(40, 60), 1);
  FilterJob job;
  job.ppd = ppd.path();
  job.input = rasterStream({large, behind}, CUPS_RASTER_WRITE_COMPRESSED);
  job.addressSpace = size_t{80} << 20U;
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
  EXPECT_EQ(countOf("page 1 is not printed: no memory for its bitmap of 6000 x 6000 pixels"), 1U);
  // The page behind it begins where its own header does, and has its own content.
  EXPECT_GT(result.output.size(), size_t{300});
}
#endif

}  // namespace
}  // namespace velka::testing
