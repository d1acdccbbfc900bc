// Jobs with little memory, from far too little on.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "jobs/JobFixture.h"
#include "kills/KilledJob.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

constexpr size_t kKiB = 1024;
constexpr size_t kMiB = 1024 * kKiB;

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// A page of the usual paper at the printers' usual and finest resolution.
Bytes wholePage(unsigned dpi) {
  const cups_page_header2_t header = rgbHeader(1488 * dpi / 180, 2104 * dpi / 180, dpi, dpi);
  return rasterStream({inkedPage(header, 2)}, CUPS_RASTER_WRITE_COMPRESSED);
}

class AddressSpace : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers reserve address space of their own";
#endif
    job_.ppd = ppd_.path();
  }

  FilterResult runIn(size_t bytes) {
    job_.addressSpace = bytes;
    unlink("/tmp/velka.log");
    return runFilter(kFilter, job_);
  }

  // The page is printed, or it is not and somebody is told. Below some 20 MiB the system
  // does not get so far as to start the program.
  void expectPageOrTrace(const FilterResult& result, const Bytes& good) {
    if (result.status == 127) {
      EXPECT_TRUE(holds(result.errors, "error while loading shared libraries"));
      EXPECT_EQ(result.output, Bytes{});
      return;
    }
    EXPECT_EQ(result.status, 0) << result.errors;
    if (result.output == good) return;
    // What is sent already stays, and the page is ended as any other.
    const Bytes end = {0x0C, 0x1B, '@'};
    const std::string log = logText();
    if (holds(log, "page 1 is not printed to its end: no memory for its commands")) {
      ASSERT_GT(result.output.size(), end.size());
      const auto cut = result.output.end() - static_cast<ptrdiff_t>(end.size());
      EXPECT_TRUE(beginsWith(good, {result.output.begin(), cut}));
      EXPECT_EQ(Bytes(cut, result.output.end()), end);
      return;
    }
    EXPECT_LE(result.output.size(), 12U) << "half a page";
    EXPECT_TRUE(holds(log, "page 1 is not printed: no memory for ") ||
                holds(result.errors, "The PPD file could not be opened.") ||
                holds(result.errors, "cupsRasterOpen failed.") ||
                holds(result.errors, "\nWARNING: The job log "))
        << "nobody is told: " << result.errors << log;
  }

  // The least of these at which the page is printed; every one above has to print it.
  size_t leastFor(size_t from, size_t to, size_t step) {
    const Bytes good = runIn(0).output;
    EXPECT_GT(good.size(), 100000U);
    size_t least = 0;
    for (size_t bytes = from; bytes <= to; bytes += step) {
      SCOPED_TRACE(std::to_string(bytes / kKiB) + " KiB");
      const FilterResult result = runIn(bytes);
      expectPageOrTrace(result, good);
      if (least == 0 && result.output == good) least = bytes;
      EXPECT_TRUE(least == 0 || result.output == good) << "printed with less";
    }
    return least;
  }

  TempFile ppd_{ppdText({GetParam(), {}, false})};
  FilterJob job_;
};

TEST_P(AddressSpace, OfAnySizePrintsThePageOrTellsThatItIsLost) {
  job_.input = wholePage(180);
  const size_t least = leastFor(4 * kMiB, 68 * kMiB, sweep(4 * kMiB, 256 * kKiB));
  EXPECT_GT(least, 0U);
  EXPECT_LE(least, 64 * kMiB);
  std::printf("a page of 9.4 MB needs %zu KiB\n", least / kKiB);
}

TEST_P(AddressSpace, FromSixtyFourMegabytesUpPrintsAPageOfTheFinestResolutionOrTells) {
  job_.input = wholePage(360);
  const size_t least = leastFor(64 * kMiB, 160 * kMiB, sweep(32 * kMiB, 4 * kMiB));
  EXPECT_GT(least, 0U);
  std::printf("a page of 37.6 MB needs %zu KiB\n", least / kKiB);
}

INSTANTIATE_TEST_SUITE_P(OfModel, AddressSpace, ::testing::Values(1, 2));

}  // namespace
}  // namespace velka::testing
