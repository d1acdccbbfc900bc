// Jobs that are cancelled on the way.
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "guard/GuardJob.h"

namespace {

using namespace velka::testing;

void feedBytes(int fd, const Bytes& bytes, size_t from, size_t to) {
  EXPECT_EQ(write(fd, bytes.data() + from, to - from), static_cast<ssize_t>(to - from));
}

// Until all that was written is read.
void awaitRead(int fd) {
  for (int left = 1; left > 0; usleep(2000))
    if (ioctl(fd, FIONREAD, &left) != 0) return;
}

// Until it would notice the signal.
void awaitHandler(int pid) {
  for (;; usleep(2000)) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);)
      if (line.starts_with("SigCgt:") &&
          ((std::stoull(line.substr(7), nullptr, 16) >> (SIGTERM - 1)) & 1U) != 0)
        return;
  }
}

void awaitEnd(int pid) {
  siginfo_t ended = {};
  waitid(P_PID, static_cast<id_t>(pid), &ended, WEXITED | WNOWAIT);
}

FilterJob jobWith(const std::function<void(int pid, int fd)>& feed) {
  FilterJob job;
  job.mostSeconds = 300;
  job.feed = feed;
  return job;
}

const std::vector<RasterPage> kPages = {inkedPage(rgbHeader(40, 60), 1),
                                        inkedPage(rgbHeader(40, 60), 2)};

size_t firstEnd() {
  return rasterStream({kPages[0]}).size();
}

TEST(Cancelled, WithinAPageItIsPassedToItsEndAndCounted) {
  const Bytes stream = rasterStream(kPages);
  const size_t half = firstEnd() - 2000;
  const FilterResult result = runFilter(VELKA_GUARD, jobWith([&](int pid, int fd) {
                                          feedBytes(fd, stream, 0, half);
                                          awaitRead(fd);
                                          kill(pid, SIGTERM);
                                          feedBytes(fd, stream, half, stream.size());
                                          awaitEnd(pid);
                                        }));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, firstBytes(stream, firstEnd()));
  EXPECT_EQ(told(result, "PAGE"), Texts{"1 1"});
  EXPECT_EQ(told(result, "ERROR"), Texts{});
}

TEST(Cancelled, BetweenPagesItEndsAlthoughItsInputDoesNot) {
  const Bytes stream = rasterStream(kPages);
  const FilterResult result = runFilter(VELKA_GUARD, jobWith([&](int pid, int fd) {
                                          feedBytes(fd, stream, 0, firstEnd());
                                          awaitRead(fd);
                                          kill(pid, SIGTERM);
                                          awaitEnd(pid);
                                        }));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, firstBytes(stream, firstEnd()));
  EXPECT_EQ(told(result, "PAGE"), Texts{"1 1"});
}

TEST(Cancelled, BeforeTheRasterItEndsWithoutAByte) {
  const FilterResult result = runFilter(VELKA_GUARD, jobWith([&](int pid, int /*fd*/) {
                                          awaitHandler(pid);
                                          kill(pid, SIGTERM);
                                          awaitEnd(pid);
                                        }));
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(result.output.empty());
  EXPECT_EQ(told(result, "ERROR"), Texts{});
}

// Its rasteriser has ended a moment before: the page is cut short, and that is no damage.
TEST(Cancelled, ARasterThatEndsWithTheJobIsNotToldOf) {
  const Bytes stream = rasterStream(kPages);
  const size_t half = firstEnd() - 2000;
  const FilterResult result = runFilter(VELKA_GUARD, jobWith([&](int pid, int fd) {
                                          feedBytes(fd, stream, 0, half);
                                          awaitRead(fd);
                                          kill(pid, SIGTERM);
                                        }));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, firstBytes(stream, half));
  EXPECT_EQ(told(result, "ERROR"), Texts{});
  EXPECT_EQ(told(result, "PAGE"), Texts{});
}

// Sets that nobody prints any more.
TEST(Cancelled, CopiesThatWereToFollowAreNotCounted) {
  cups_page_header2_t header = rgbHeader(40, 60);
  header.NumCopies = 4;
  header.Collate = CUPS_TRUE;
  const std::vector<RasterPage> pages = {inkedPage(header, 1), inkedPage(header, 2)};
  const Bytes stream = rasterStream(pages);
  const FilterResult result = runFilter(VELKA_GUARD, jobWith([&](int pid, int fd) {
                                          feedBytes(fd, stream, 0, stream.size());
                                          awaitRead(fd);
                                          kill(pid, SIGTERM);
                                          awaitEnd(pid);
                                        }));
  EXPECT_EQ(told(result, "PAGE"), (Texts{"1 1", "2 1"}));
  EXPECT_EQ(told(guarded(stream), "PAGE"), (Texts{"1 1", "2 1", "1 3", "2 3"}));
}

}  // namespace
