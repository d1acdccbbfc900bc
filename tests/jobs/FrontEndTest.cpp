// How the filter starts, ends and is interrupted.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <ctime>

#include "jobs/JobFixture.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

const Bytes kEndOfDocument = {0x1B, '@'};

TEST(Arguments, TooFewOrTooManyDoNothingAndReportSuccess) {
  for (const size_t count : {0U, 1U, 4U, 7U}) {
    FilterJob job;
    job.arguments.assign(count, "1");
    job.input = rasterStream({inkedPage(rgbHeader(20, 30), 1)});
    const FilterResult result = runFilter(kFilter, job);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, Bytes{});
    EXPECT_EQ(result.errors, "");
  }
}

TEST(Arguments, AFileThatDoesNotExistIsReportedAsSuccessAfterAPause) {
  FilterJob job;
  job.arguments.push_back("/nonexistent/raster");
  timespec before = {};
  timespec after = {};
  clock_gettime(CLOCK_MONOTONIC, &before);
  const FilterResult result = runFilter(kFilter, job);
  clock_gettime(CLOCK_MONOTONIC, &after);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  // The pause is a lower bound, whatever the machine does.
  EXPECT_GE(after.tv_sec - before.tv_sec + (after.tv_nsec >= before.tv_nsec ? 0 : -1), 0);
  EXPECT_GE((after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1000000,
            1000);
}

TEST(Arguments, AStreamThatIsNoRasterSaysSo) {
  for (const Bytes& input : {Bytes{}, Bytes{1, 2}, Bytes(5000, 'x')}) {
    FilterJob job;
    job.input = input;
    const FilterResult result = runFilter(kFilter, job);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, Bytes{});
    EXPECT_EQ(result.errors, "cupsRasterOpen failed.");
  }
}

// Deliberate: what a start that failed found stays as it is.
TEST(Arguments, AFailedStartLeavesTheCopyOfTheJob) {
  const TempFile ppd(ppdText({}));
  const JobId id("failed");
  writeText(id.pdf(), "a copy");
  FilterJob job;
  job.ppd = ppd.path();
  job.arguments[0] = id.text();
  EXPECT_EQ(runFilter(kFilter, job).status, 0);
  EXPECT_EQ(textOf(id.pdf()), "a copy");
}

TEST(Arguments, AVeryLongJobIdIsCut) {
  FilterJob job;
  job.arguments[0] = std::string(5000, '9');
  job.input = rasterStream({whitePage(rgbHeader(20, 30))});
  EXPECT_EQ(runFilter(kFilter, job).status, 0);
}

TEST(Jobs, WithoutAPageEndWithOneAndSendNothing) {
  const Bytes onlySync = rawStream({});
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  job.input = onlySync;
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, Bytes{});
  EXPECT_EQ(result.errors, "");
  const auto messages = logMessages();
  ASSERT_FALSE(messages.empty());
  EXPECT_EQ(messages.back(), "EndDoc, bufStart is 0x0");
}

TEST(Jobs, APageTextRunsIntoTheNext) {
  const RasterPage page = whitePage(rgbHeader(20, 30));
  const FilterResult result = runJob({}, rasterStream({page, page}));
  EXPECT_EQ(result.errors, "Finish print operation.Finish print operation.");
}

TEST(Jobs, RemoveTheTemporaryPdfAtTheirEnd) {
  const std::string path = "/tmp/VK_TEMP_CUPS_velka-test.pdf";
  for (const bool withPpd : {true, false}) {
    std::FILE* pdf = std::fopen(path.c_str(), "w");
    ASSERT_NE(pdf, nullptr);
    std::fclose(pdf);
    const TempFile ppd(ppdText({}));
    FilterJob job;
    job.arguments[0] = "velka-test";
    if (withPpd) job.ppd = ppd.path();
    job.input = rasterStream({whitePage(rgbHeader(20, 30))});
    EXPECT_EQ(runFilter(kFilter, job).status, 0);
    // Without a PPD nothing is cleaned up.
    EXPECT_EQ(access(path.c_str(), F_OK) == 0, !withPpd);
  }
  unlink(path.c_str());
}

TEST(Ppd, ABrokenOneIsReportedAndTheJobGoesOn) {
  const TempFile ppd("*PPD-Adobe: \"4.3\"\nthis is no PPD\n");
  FilterJob job;
  job.ppd = ppd.path();
  job.input = rasterStream({whitePage(rgbHeader(20, 30))});
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors.rfind("The PPD file could not be opened.", 0), 0U);
  EXPECT_NE(result.errors.find(" on line "), std::string::npos);
}

TEST(Ppd, NoneInTheEnvironmentIsReportedToo) {
  FilterJob job;
  job.input = rasterStream({whitePage(rgbHeader(20, 30))});
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors.rfind("The PPD file could not be opened.", 0), 0U);
}

TEST(Ppd, TheJobsOptionsOverrideItsDefaults) {
  const TempFile ppd(ppdText({1, {{"OutputColorType", "1"}}, false}));
  FilterJob job;
  job.ppd = ppd.path();
  job.arguments[4] = "OutputColorType=Other copies=3 media=A4";
  const RasterPage page = inkedPage(rgbHeader(60, 50), 3);
  job.input = rasterStream({page});
  tagOEMCFG options = reference::defaultOptions();
  options.OutputColorType = 7;
  expectSameStream(runFilter(kFilter, job).output, expectedStream(options, {page}));
}

TEST(Ppd, PagesThatAPdfIsToFillConsumeTheirLinesAndPrintWhite) {
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job;
  job.ppd = ppd.path();
  job.arguments[0] = "velka-test-no-such-job";
  const RasterPage page = inkedPage(rgbHeader(60, 180), 3);
  job.input = rasterStream({page, page});
  const FilterResult result = runFilter(kFilter, job);
  const Bytes start = {0x1B, '@', 0x1B, '2', 0x1B, 'C', 6};
  Bytes expected = start;
  expected.insert(expected.end(), start.begin(), start.end());
  expected.insert(expected.end(), kEndOfDocument.begin(), kEndOfDocument.end());
  EXPECT_EQ(result.output, expected);
}

// Waits until the job log holds a text. The bound only ends a test that hangs.
bool waitForLog(const std::string& text) {
  for (int i = 0; i < 6000; ++i) {
    if (logText().find(text) != std::string::npos) return true;
    usleep(10000);
  }
  return false;
}

void feedBytes(int fd, const Bytes& bytes, size_t from, size_t to) {
  while (from < to) {
    const ssize_t n = write(fd, bytes.data() + from, to - from);
    if (n <= 0) return;
    from += static_cast<size_t>(n);
  }
}

TEST(Cancelling, DuringAPageFinishesItAndReadsNoFurther) {
  const std::vector<RasterPage> pages = {inkedPage(rgbHeader(40, 60), 1),
                                         inkedPage(rgbHeader(40, 60), 2),
                                         inkedPage(rgbHeader(40, 60), 3)};
  const Bytes stream = rawStream(pages);
  const size_t pageBytes = sizeof(cups_page_header2_t) + size_t{60} * 120;
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  unlink("/tmp/velka.log");
  job.feed = [&](int pid, int fd) {
    // One page, the second's header and half of its lines.
    const size_t half = 4 + pageBytes + sizeof(cups_page_header2_t) + size_t{30} * 120;
    feedBytes(fd, stream, 0, half);
    EXPECT_TRUE(waitForLog("Start Page 2 "));
    kill(pid, SIGTERM);
    feedBytes(fd, stream, half, stream.size());
  };
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(1));
  expectSameStream(result.output,
                   expectedStream(reference::defaultOptions(), {pages[0], pages[1]}));
}

TEST(Cancelling, BetweenPagesReadsNoFurther) {
  const std::vector<RasterPage> pages = {inkedPage(rgbHeader(40, 60), 1),
                                         inkedPage(rgbHeader(40, 60), 2)};
  const Bytes stream = rawStream(pages);
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  unlink("/tmp/velka.log");
  job.feed = [&](int pid, int fd) {
    const size_t first = 4 + sizeof(cups_page_header2_t) + size_t{60} * 120;
    feedBytes(fd, stream, 0, first);
    EXPECT_TRUE(waitForLog("After set StartPageOemPDEV"));
    usleep(200000);  // into the read of the next header
    kill(pid, SIGTERM);
    feedBytes(fd, stream, first, stream.size());
  };
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expectedStream(reference::defaultOptions(), {pages[0]}));
}

// The copier has ended by then, so nobody else would remove the copy.
TEST(Cancelling, BeforeTheRasterComesTakesTheCopyOfTheJobAlong) {
  const TempFile ppd(ppdText({}));
  const JobId id("early");
  const JobId other("earlylink");
  writeText(id.pdf(), "a copy");
  writeText(other.pdf() + ".target", "somebody's");
  ASSERT_EQ(symlink((other.pdf() + ".target").c_str(), other.pdf().c_str()), 0);
  for (const JobId* job : {&id, &other}) {
    FilterJob cancelled;
    cancelled.ppd = ppd.path();
    cancelled.arguments[0] = job->text();
    unlink("/tmp/velka.log");
    cancelled.feed = [&](int pid, int /*fd*/) {
      EXPECT_TRUE(waitForLog("log4z thread started!"));
      kill(pid, SIGTERM);
    };
    const FilterResult result = runFilter(kFilter, cancelled);
    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_EQ(result.errors, "");
  }
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
  EXPECT_EQ(filesOf(other.text()).size(), 2U) << "a link is none of our copies";
}

TEST(Cancelling, BeforeTheFirstPageEndsWithOne) {
  const Bytes stream = rawStream({inkedPage(rgbHeader(40, 60), 1)});
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  unlink("/tmp/velka.log");
  job.feed = [&](int pid, int fd) {
    feedBytes(fd, stream, 0, 4);
    EXPECT_TRUE(waitForLog("tempPDF: "));
    usleep(200000);
    kill(pid, SIGTERM);
    feedBytes(fd, stream, 4, stream.size());
  };
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, Bytes{});
  EXPECT_EQ(result.errors, "");
}

}  // namespace
}  // namespace velka::testing
