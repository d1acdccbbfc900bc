// Many jobs at once, in one /tmp.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "jobs/JobFixture.h"
#include "kills/KilledJob.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

// A process of this program that runs something and says whether it came out right.
class Beside {
 public:
  template <typename Check>
  explicit Beside(const Check& check) : pid_(fork()) {
    if (pid_ == 0) _exit(check() ? 0 : 1);
  }
  [[nodiscard]] bool right() const {
    int status = -1;
    return waitpid(pid_, &status, 0) == pid_ && status == 0;
  }

 private:
  pid_t pid_;
};

struct RasterJob {
  Bytes stream;
  Bytes expected;
};

RasterJob rasterJob(unsigned seed) {
  const std::vector<RasterPage> pages = {inkedPage(rgbHeader(60 + seed % 7, 50), seed),
                                         inkedPage(rgbHeader(60 + seed % 7, 50), seed + 2)};
  return {rasterStream(pages), expectedStream(reference::defaultOptions(), pages)};
}

TEST(ManyJobs, AtOnceAllPrintTheirOwn) {
  const int count = sweep(20, 200);
  const TempFile ppd(ppdText({}));
  KilledJob pdf(KilledJob::Kind::Pdf);
  const Bytes pdfExpected = pdf.run().result.output;
  std::vector<Beside> jobs;
  for (int number = 0; number < count; ++number) {
    if (number % 5 == 4) {
      // Its id has the process in it.
      jobs.emplace_back([&] {
        KilledJob own(KilledJob::Kind::Pdf);
        return own.runBeside().output == pdfExpected;
      });
    } else {
      const RasterJob job = rasterJob(static_cast<unsigned>(number));
      jobs.emplace_back([&] {
        FilterJob filter;
        filter.ppd = ppd.path();
        filter.input = job.stream;
        return runFilter(kFilter, filter).output == job.expected;
      });
    }
  }
  for (size_t number = 0; number < jobs.size(); ++number)
    EXPECT_TRUE(jobs[number].right()) << number;
}

}  // namespace
}  // namespace velka::testing
