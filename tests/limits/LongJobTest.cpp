// A job of very many pages takes no more at its end than at its start.
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "jobs/JobFixture.h"
#include "support/Eventually.h"
#include "support/Sweep.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

namespace fs = std::filesystem;

struct Taken {
  long memoryKiB = 0;
  long descriptors = 0;
};

long residentKiB(const std::string& process) {
  const std::string status = textOf(process + "/status");
  const size_t at = status.find("VmRSS:");
  return at == std::string::npos ? -1 : std::atol(status.c_str() + at + 6);
}

long openDescriptors(const std::string& process) {
  std::error_code ignored;
  return std::distance(fs::directory_iterator(process + "/fd", ignored), fs::directory_iterator());
}

// Once all that was sent is read. The least of some looks: a line of the log is being
// written now and then.
Taken takenBy(int pid, int fd) {
  const std::string process = "/proc/" + std::to_string(pid);
  int waiting = 1;
  EXPECT_TRUE(eventually([&] { return ioctl(fd, FIONREAD, &waiting) == 0 && waiting == 0; }));
  Taken least = {residentKiB(process), openDescriptors(process)};
  for (int look = 0; look < 50; ++look) {
    usleep(2000);
    least.memoryKiB = std::min(least.memoryKiB, residentKiB(process));
    least.descriptors = std::min(least.descriptors, openDescriptors(process));
  }
  return least;
}

void send(int fd, const Bytes& bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

// The sanitizers hold on to what is freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kKeptKiB = 100 << 10U;
#else
constexpr long kKeptKiB = 512;
#endif

class LongJob : public ::testing::TestWithParam<int> {};

TEST_P(LongJob, TakesNoMoreAtItsEndThanAtItsStart) {
  const int pages = sweep(500, 10000);
  const int early = sweep(50, 100);
  const RasterPage page = inkedPage(rgbHeader(48, 30), 2);
  const Bytes sync = rawStream({});
  const Bytes whole = rawStream({page});
  const Bytes onePage(whole.begin() + static_cast<ptrdiff_t>(sync.size()), whole.end());
  const TempFile ppd(ppdText({GetParam(), {}, false}));
  Taken atStart;
  Taken atEnd;
  FilterJob job;
  job.ppd = ppd.path();
  job.feed = [&](int pid, int fd) {
    send(fd, sync);
    for (int sent = 1; sent <= pages; ++sent) {
      send(fd, onePage);
      if (sent == early) atStart = takenBy(pid, fd);
      if (sent == pages - early) atEnd = takenBy(pid, fd);
    }
  };
  const FilterResult result = runFilter(kFilter, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(static_cast<size_t>(pages)));
  ASSERT_GT(atStart.memoryKiB, 0);
  ASSERT_GE(atStart.descriptors, 3);
  EXPECT_EQ(atEnd.descriptors, atStart.descriptors);
  // What a process touches first it touches late by chance; a page keeps nothing.
  EXPECT_LT(atEnd.memoryKiB, atStart.memoryKiB + kKeptKiB);
  std::printf("%d pages: %ld KiB and %ld descriptors at %d, %ld and %ld at %d\n", pages,
              atStart.memoryKiB, atStart.descriptors, early, atEnd.memoryKiB, atEnd.descriptors,
              pages - early);
}

INSTANTIATE_TEST_SUITE_P(OfModel, LongJob, ::testing::Values(1, 2));

}  // namespace
}  // namespace velka::testing
