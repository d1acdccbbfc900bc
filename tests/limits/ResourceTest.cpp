// Jobs with few descriptors, no room in files and no processes.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

#include "jobs/PdfJobFixture.h"
#include "kills/KilledJob.h"
#include "support/LogForm.h"

namespace velka::testing {
namespace {

using Kind = KilledJob::Kind;

template <typename Resource>
void limit(Resource resource, rlim_t most) {
  const rlimit wanted = {most, most};
  setrlimit(resource, &wanted);
}

// Three pages that stay white.
Bytes whitePages(const Outcome& good) {
  const Bytes white = whitePageOf(good.result.output);
  return joined(joined(joined(white, white), white), endOfDocument());
}

class Limited : public ::testing::TestWithParam<Kind> {
 protected:
  void SetUp() override {
    good_ = job_.run();
    ASSERT_EQ(good_.result.status, 0);
  }
  [[nodiscard]] bool drawsPages() const { return GetParam() == Kind::Pdf; }
  // Where no tool can draw all pages are white.
  void expectPagesOrWhite(const Outcome& run) const {
    EXPECT_EQ(run.result.status, 0);
    EXPECT_TRUE(run.result.output == (drawsPages() ? whitePages(good_) : good_.result.output))
        << run.log;
    EXPECT_EQ(run.alive, std::vector<std::string>{});
  }

  KilledJob job_{GetParam()};
  Outcome good_;
};

class FewDescriptors : public Limited {};

TEST_P(FewDescriptors, EightAreEnough) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer takes descriptors of its own";
#endif
  const Outcome run =
      job_.runChanged([](FilterJob& job) { job.beforeStart = [] { limit(RLIMIT_NOFILE, 8); }; });
  EXPECT_EQ(run.result.status, 0);
  EXPECT_TRUE(run.result.output == good_.result.output) << run.log;
  EXPECT_EQ(run.left, good_.left);
  EXPECT_EQ(run.messages.size(), good_.messages.size());
}

// With the tools themselves, and no scripts in their place. The shell has too few of them for
// the pipeline that counts the pages.
TEST(FewDescriptorsOfAPdf, EightAreEnough) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer takes descriptors of its own";
#endif
  const JobId id("few");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
  const Pages pages = rasterPages(3);
  const Bytes expected =
      expectedPdfStream(reference::defaultOptions(), pages, picturesOf(id.pdf(), pages));
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, pages);
  job.beforeStart = [] { limit(RLIMIT_NOFILE, 8); };
  const FilterResult result = runFilter(VELKA_FILTER, job);
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expected);
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

// The stream goes to a pipe, as in a queue; so would the texts, which the log of the print
// server takes.
TEST_P(Limited, ToFilesWithoutABytePrintsWithoutALog) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "this sanitizer ends a process that may not write the file it starts with";
#endif
  const Outcome run = job_.runChanged([](FilterJob& job) {
    job.drain = [](int /*pid*/, int fd) { return readToEnd(fd); };
    job.beforeStart = [] {
      dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
      limit(RLIMIT_FSIZE, 0);
    };
  });
  EXPECT_EQ(run.log, "");
  if (job_.copies()) {
    // Pages would come out white for want of the copy.
    EXPECT_EQ(run.result.status, 1);
    EXPECT_EQ(run.result.output, Bytes{});
    EXPECT_EQ(run.left, std::vector<std::string>{});
  } else {
    expectPagesOrWhite(run);
    EXPECT_EQ(run.left, std::vector<std::string>{"velka.log"});
  }
}

// The system counts a user's processes, and root's not at all. The limit comes last: a process
// that becomes a user who is over it, as while another test's job runs, may start no program.
void allowNoProcess() {
  constexpr uid_t kNobody = 65534;
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0))
    _exit(126);
  limit(RLIMIT_NPROC, 0);
}

TEST_P(Limited, ToNoFurtherProcessPrintsWhatItCanAndTellsOfTheLog) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers look for leaks, and at threads, in a process of their own";
#endif
  job_.openToAll();
  const Outcome run = job_.runChanged([](FilterJob& job) { job.beforeStart = allowNoProcess; });
  if (run.result.status == 126) GTEST_SKIP() << "no other user can be had here";
  EXPECT_EQ(run.log, "");
  if (job_.copies()) {
    EXPECT_EQ(run.result.status, 0) << run.result.errors;
    EXPECT_TRUE(run.result.output == good_.result.output);
    EXPECT_EQ(run.left, good_.left);
  } else {
    expectPagesOrWhite(run);
    EXPECT_EQ(run.result.errors,
              "\nWARNING: The job log /tmp/velka.log stays empty: its thread cannot be started.\n" +
                  good_.result.errors);
  }
}

// The PDF's own is above: the shell reads scripts, as its tools are here, through its tenth.
INSTANTIATE_TEST_SUITE_P(Job, FewDescriptors,
                         ::testing::Values(Kind::Raster, Kind::Orlo, Kind::PdfCopy),
                         [](const auto& kind) { return nameOf(kind.param); });
INSTANTIATE_TEST_SUITE_P(Job, Limited,
                         ::testing::Values(Kind::Raster, Kind::Orlo, Kind::Pdf, Kind::PdfCopy),
                         [](const auto& kind) { return nameOf(kind.param); });

}  // namespace
}  // namespace velka::testing
