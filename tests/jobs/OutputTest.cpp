// What becomes of the printer's stream, and of the log, when writing fails.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

TEST(Output, ABrokenPipeDoesNotEndTheJob) {
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  job.outputBroken = true;
  const RasterPage page = inkedPage(rgbHeader(40, 60), 1);
  job.input = rasterStream({page, page});
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
}

TEST(Output, ClosedDescriptorsAtStartKeepTheLogOutOfThePrinter) {
  const TempFile ppd(ppdText({}));
  const RasterPage page = inkedPage(rgbHeader(40, 60), 1);
  const Bytes stream = rasterStream({page});
  const TempFile file({reinterpret_cast<const char*>(stream.data()), stream.size()});
  const Bytes expected = expectedStream(reference::defaultOptions(), {page});
  for (const std::vector<int>& closed :
       std::vector<std::vector<int>>{{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
    FilterJob job;
    job.ppd = ppd.path();
    job.arguments.push_back(file.path());
    job.closedAtStart = closed;
    const FilterResult result = runFilter(kFilter, job);
    EXPECT_EQ(result.status, 0);
    const bool outputOpen = std::find(closed.begin(), closed.end(), 1) == closed.end();
    EXPECT_EQ(result.output, outputOpen ? expected : Bytes{});
    EXPECT_EQ(logMessages().back(), "EndDocOemPDEV finished");
  }
}

// A limit on the size of files is the log's affair: the stream goes to a pipe.
TEST(Output, AFileSizeLimitShortensTheLogAndNotTheJob) {
  const TempFile ppd(ppdText({}));
  const RasterPage page = inkedPage(rgbHeader(40, 60), 1);
  unlink("/tmp/velka.log");
  FilterJob job;
  job.ppd = ppd.path();
  job.fileSize = 500;
  job.input = rasterStream({page, page});
  job.drain = [](int /*pid*/, int fd) { return readToEnd(fd); };
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
  expectSameStream(result.output, expectedStream(reference::defaultOptions(), {page, page}));
  EXPECT_EQ(logText().size(), 500U);
}

// The last line of the log of a job that runs by the command of a shell.
std::string lastLogLine(const std::string& command, bool outputBroken) {
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  job.arguments.insert(job.arguments.begin(), {"-c", command, kFilter});
  job.input = rasterStream({inkedPage(rgbHeader(40, 60), 1)});
  job.outputBroken = outputBroken;
  const FilterResult result = runFilter("/bin/sh", job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(1));
  return logMessages().back();
}

TEST(Output, AFullDiskBehindItIsToldInTheLogsLastLine) {
  EXPECT_EQ(lastLogLine("exec \"$0\" \"$@\" >/dev/full", false),
            "the job is not printed to its end: No space left on device");
}

// The backend tells of its own end.
TEST(Output, AReaderThatIsGoneIsNotToldInTheLog) {
  EXPECT_EQ(lastLogLine("exec \"$0\" \"$@\"", true), "EndDocOemPDEV finished");
}

// The first bytes fit, what follows the hole must not be written although it would fit.
TEST(Output, NothingFollowsAHole) {
  const TempFile ppd(ppdText({}));
  // Its commands are longer than the limit, those of the white page are not.
  const RasterPage inked = inkedPage(rgbHeader(400, 100), 2);
  const RasterPage white = whitePage(rgbHeader(400, 100));
  const Bytes whole = expectedStream(reference::defaultOptions(), {inked, white});
  FilterJob job;
  job.ppd = ppd.path();
  job.fileSize = 300;
  job.input = rasterStream({inked, white});
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(2));
  ASSERT_GT(whole.size(), 1000U);
  EXPECT_EQ(result.output, Bytes(whole.begin(), whole.begin() + 300));
}

}  // namespace
}  // namespace velka::testing
