// An output that takes no more at one byte of the stream or another, and other ends that
// hardly a job comes to.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "RasterStream.h"
#include "guard/GuardJob.h"
#include "support/TestPdf.h"

namespace {

using namespace velka::testing;

constexpr size_t kSyncBytes = 4;
constexpr size_t kHeaderBytes = 1796;
const char* const kFull = "Cannot pass the raster on: File too large";

// Standard error has the same limit, so the output begins where that has room enough.
FilterResult whereOnly(size_t bytes, const Bytes& stream) {
  constexpr size_t kRoom = 8192;
  FilterJob job;
  job.input = stream;
  job.fileSize = kRoom + bytes;
  job.beforeStart = [] {
    std::signal(SIGXFSZ, SIG_IGN);
    lseek(STDOUT_FILENO, kRoom, SEEK_SET);
  };
  FilterResult result = runFilter(VELKA_GUARD, job);
  result.output.erase(result.output.begin(), result.output.begin() + kRoom);
  return result;
}

void expectToldOf(size_t bytes, const Bytes& stream) {
  const FilterResult result = whereOnly(bytes, stream);
  EXPECT_EQ(result.status, 1) << bytes;
  EXPECT_EQ(result.output, firstBytes(stream, bytes));
  EXPECT_EQ(told(result, "ERROR"), Texts{kFull}) << bytes;
}

TEST(AnOutputThatTakesNoMore, IsToldOfAtAnyByteOfTheRaster) {
  for (const auto mode : {CUPS_RASTER_WRITE, CUPS_RASTER_WRITE_COMPRESSED}) {
    const Bytes stream = rasterStream(twoPages(), mode);
    const size_t second = rasterStream({twoPages()[0]}, mode).size();
    for (const size_t bytes : {size_t{1}, kSyncBytes, kSyncBytes + 100, kSyncBytes + kHeaderBytes,
                               kSyncBytes + kHeaderBytes + 200, second, second + 100,
                               second + kHeaderBytes + 200, stream.size() - 1})
      expectToldOf(bytes, stream);
  }
}

TEST(AnOutputThatTakesNoMore, IsToldOfWhereTheInputIsNoBetter) {
  expectToldOf(2, Bytes(300, 'x'));
  const Bytes whole = rasterStream(twoPages());
  const size_t second = rasterStream({twoPages()[0]}).size();
  expectToldOf(second + 50, firstBytes(whole, second + 300));
  cups_page_header2_t nonsense = rgbHeader(60, 60);
  nonsense.cupsHeight = 0;
  expectToldOf(second + 50, rawStream({twoPages()[0], {nonsense, {Bytes(70000)}}}));
}

TEST(ALaterPageThatCannotPrint, IsNotCountedInCollatedCopiesEither) {
  cups_page_header2_t fine = rgbHeader(60, 60);
  fine.NumCopies = 3;
  fine.Collate = CUPS_TRUE;
  cups_page_header2_t grey = fine;
  grey.cupsColorSpace = CUPS_CSPACE_SW;
  const Bytes stream = rasterStream({inkedPage(fine, 1), inkedPage(grey, 2), inkedPage(fine, 3)});
  const FilterResult result = guarded(stream);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(told(result, "PAGE"), (Texts{"1 1", "3 1", "1 2", "3 2"}));
}

FilterJob copyJob(const std::string& id, const TempFile& ppd) {
  FilterJob job;
  job.arguments = {id, "user", "title", "1", ""};
  job.ppd = ppd.path();
  job.input = rasterStream({inkedPage(rgbHeader(60, 60), 1)});
  return job;
}

TEST(PagesFromTheCopy, ThatNobodyCanCountAreNoError) {
  const JobId id("uncounted");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(1)));
  const ToolFolder noTools({});
  const TempFile ppd(ppdText({1, {}, true}), ".ppd");
  FilterJob job = copyJob(id.text(), ppd);
  job.path = noTools.path();
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, job.input);
  EXPECT_EQ(told(result, "ERROR"), Texts{});
  EXPECT_EQ(told(result, "DEBUG").back(), "The pages of the PDF copy cannot be counted");
}

TEST(PagesFromTheCopy, StopWhereItsNameWouldBeTooLong) {
  const TempFile ppd(ppdText({1, {}, true}), ".ppd");
  const FilterJob job = copyJob(std::string(300, '9'), ppd);
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, firstBytes(job.input, kSyncBytes));
  EXPECT_EQ(raised(result), Texts{"velka-pdf-copy-error"});
}

TEST(PageLines, OfNoBytesAreComplete) {
  cups_page_header2_t header = rgbHeader(10, 10);
  header.cupsBytesPerLine = 0;
  const velka::PageLines lines(*velka::rasterFormat({'R', 'a', 'S', '3'}), header);
  EXPECT_TRUE(lines.areComplete());
  EXPECT_EQ(lines.percent(), 100);
  EXPECT_EQ(lines.plainBytes(), 0U);
}

TEST(PageLines, EndWhereNoPixelHasRoomAnyMore) {
  cups_page_header2_t header = rgbHeader(1, 1);
  header.cupsBytesPerLine = 4;
  velka::PageLines lines(*velka::rasterFormat({'R', 'a', 'S', '2'}), header);
  // One line, one pixel, and a run of another that would need three bytes.
  const Bytes bytes = {0, 0, 1, 2, 3, 0, 99};
  EXPECT_EQ(lines.take(bytes), 6U);
  EXPECT_TRUE(lines.areComplete());
  EXPECT_EQ(lines.take(bytes), 0U);
}

}  // namespace
