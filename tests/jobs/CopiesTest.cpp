// Copies, and jobs that are cancelled while they are made.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "jobs/JobFixture.h"

namespace velka::testing {
namespace {

constexpr size_t kStart = 7;
constexpr size_t kEnd = 2;

// Pages whose commands are several times what the pipe to the printer holds.
std::vector<RasterPage> longPages(unsigned count, unsigned copies, bool collate) {
  std::vector<RasterPage> pages;
  for (unsigned i = 0; i < count; ++i) {
    cups_page_header2_t header = rgbHeader(500, 400);
    header.NumCopies = copies;
    header.Collate = collate ? CUPS_TRUE : CUPS_FALSE;
    pages.push_back(inkedPage(header, 60 + i));
  }
  return pages;
}

// What one page adds to a stream, without its start of document.
Bytes commandsOf(RasterPage page) {
  page.header.NumCopies = 1;
  const Bytes stream = expectedStream(reference::defaultOptions(), {page});
  return {stream.begin() + kStart, stream.end() - kEnd};
}

Bytes& operator+=(Bytes& a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Runs a job and cancels it when `before` bytes have been read. The filter stands in a
// write then: the pipe holds less than what is left of the page.
FilterResult cancelAfter(const std::vector<RasterPage>& pages, size_t before) {
  const TempFile ppd(ppdText({}));
  FilterJob job;
  job.ppd = ppd.path();
  job.input = rasterStream(pages);
  job.drain = [before](int pid, int fd) {
    Bytes bytes(before);
    size_t done = 0;
    while (done < before) {
      const ssize_t n = read(fd, bytes.data() + done, before - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    bytes.resize(done);
    kill(pid, SIGTERM);
    bytes += readToEnd(fd);
    return bytes;
  };
  return runFilter(kFilter, job);
}

TEST(Copies, ThatNobodyCancelsAreAllMade) {
  for (const bool collate : {false, true}) {
    const std::vector<RasterPage> pages = longPages(3, 4, collate);
    const TempFile ppd(ppdText({}));
    FilterJob job;
    job.ppd = ppd.path();
    job.input = rasterStream(pages);
    expectSameStream(runFilter(kFilter, job).output,
                     expectedStream(reference::defaultOptions(), pages));
  }
}

TEST(CancelledCopies, UncollatedOnesEndWithTheCopyInWork) {
  const std::vector<RasterPage> pages = longPages(2, 32767, false);
  const Bytes page = commandsOf(pages[0]);
  ASSERT_GT(page.size(), 20000U);
  const Bytes whole = expectedStream(reference::defaultOptions(), longPages(1, 1, false));
  Bytes expected(whole.begin(), whole.begin() + kStart);
  for (int copy = 0; copy < 3; ++copy) expected += page;
  expected += {0x1B, '@'};
  const FilterResult result = cancelAfter(pages, kStart + 2 * page.size() + 100);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  expectSameStream(result.output, expected);
}

TEST(CancelledCopies, InTheFirstOneNoOtherFollows) {
  const std::vector<RasterPage> pages = longPages(2, 50, false);
  const Bytes page = commandsOf(pages[0]);
  const Bytes expected = expectedStream(reference::defaultOptions(), longPages(1, 1, false));
  expectSameStream(cancelAfter(pages, kStart + 100).output, expected);
}

TEST(CancelledCopies, CollatedOnesAreNotBegun) {
  const std::vector<RasterPage> pages = longPages(4, 50, true);
  std::vector<RasterPage> printed = longPages(2, 1, true);
  const Bytes expected = expectedStream(reference::defaultOptions(), printed);
  const size_t inPageTwo = 2 * kStart + commandsOf(pages[0]).size() + 100;
  const FilterResult result = cancelAfter(pages, inPageTwo);
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expected);
}

TEST(CancelledCopies, CollatedOnesEndWithThePageInWork) {
  const std::vector<RasterPage> pages = longPages(3, 50, true);
  const Bytes once = expectedStream(reference::defaultOptions(), longPages(3, 1, true));
  Bytes expected(once.begin(), once.end() - kEnd);
  for (const RasterPage& page : pages) expected += commandsOf(page);
  const size_t before = expected.size() + commandsOf(pages[0]).size() + 100;
  expected += commandsOf(pages[0]);
  expected += commandsOf(pages[1]);
  expected += {0x1B, '@'};
  const FilterResult result = cancelAfter(pages, before);
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expected);
}

}  // namespace
}  // namespace velka::testing
