// The page of velkaview --serve, ended at any instant: a signal is how it is meant to end.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "kills/KilledJob.h"
#include "support/RasterBuilder.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

class Served : public ::testing::Test {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "this sanitizer does not see how the server's library hands connections on";
#endif
    // Large enough that a signal meets the filter at work.
    const Bytes raster = rasterStream({inkedPage(rgbHeader(1488, 2105), 1)});
    writeText(folder_ / "page.ras", {raster.begin(), raster.end()});
    job_.arguments = {"--serve", folder_ / "page.ras", "--ppd",
                      std::string(VELKA_PPDS) + "/velka-standard.ppd"};
    job_.environment.emplace_back("VELKA_TEST_JOB", id_.text());
    job_.mostSeconds = 120;
  }

  // The signal comes so long after the program has started, or has told its address.
  FilterResult endAfter(int milliseconds, int signal, bool told) {
    job_.drain = [=](int pid, int output) {
      char letter = 0;
      while (told && read(output, &letter, 1) == 1 && letter != '\n') {
      }
      usleep(static_cast<useconds_t>(milliseconds) * 1000);
      kill(pid, signal);
      return readToEnd(output);
    };
    return runFilter(VELKA_VIEW, job_);
  }

  void expectNothingLeft() const {
    EXPECT_EQ(aliveWith("VELKA_TEST_JOB=" + id_.text()), std::vector<std::string>{});
    for (const std::string& name : tmp_.left()) EXPECT_EQ(name, "velka.log");
  }

  JobId id_{"served"};
  TempFolder folder_;  // before what stands in /tmp is looked at
  TmpFiles tmp_;
  FilterJob job_;
};

TEST_F(Served, EndsInOrderByTheSignalsThatAreMeantForIt) {
  for (int number = 0; number < sweep(12, 200); ++number) {
    const int signal = number % 2 == 0 ? SIGTERM : SIGINT;
    SCOPED_TRACE("signal " + std::to_string(signal) + ", instant " + std::to_string(number));
    const FilterResult result = endAfter(number * sweep(25, 2), signal, true);
    EXPECT_EQ(result.status, 0) << result.errors;
    expectNothingLeft();
    if (HasFailure()) return;
  }
}

TEST_F(Served, LeavesNothingWhereTheSignalComesBeforeItsAddress) {
  for (int number = 0; number < sweep(6, 100); ++number) {
    SCOPED_TRACE("instant " + std::to_string(number));
    const FilterResult result = endAfter(number * 2, SIGTERM, false);
    EXPECT_TRUE(result.status == 0 || result.status == 128 + SIGTERM) << result.status;
    expectNothingLeft();
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace velka::testing
