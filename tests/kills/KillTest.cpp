// Jobs that are ended from outside, at any instant.
//
// SIGTERM ends a job in order: the page in work is finished or not begun, the end of the
// document is sent, nothing of ours stays. SIGKILL leaves no order, but nothing that the
// next job would not get over. Each test run tries some instants, the sweep hundreds.
#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cstdio>
#include <random>

#include "kills/KilledJob.h"
#include "support/LogForm.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

const std::string kLog = "velka.log";
constexpr const char* kMark = "user.velka.pdfcopy";  // of a copy

// All streams that end behind a page of the good one. A page whose picture is not drawn
// any more is there and white.
std::vector<Bytes> streamsOfWholePages(const Bytes& good, bool whiteOnes) {
  std::vector<Bytes> streams;
  Bytes pages;
  const auto add = [&] {
    streams.push_back(joined(pages, endOfDocument()));
    if (whiteOnes) streams.push_back(joined(joined(pages, whitePageOf(good)), endOfDocument()));
  };
  if (whiteOnes) add();
  for (const Bytes& page : pagesOf(good)) {
    pages = joined(std::move(pages), page);
    add();
  }
  return streams;
}

// "Finish print operation." page by page; -1 where there is anything else.
int pagesTold(std::string errors) {
  const std::string kText = "Finish print operation.";
  int pages = 0;
  for (; errors.starts_with(kText); ++pages) errors.erase(0, kText.size());
  return errors.empty() ? pages : -1;
}

class Killed : public ::testing::TestWithParam<KilledJob::Kind> {
 protected:
  void SetUp() override {
    holds_ = Killer::canHoldCalls();
    if (!holds_) std::printf("note: no system calls can be held here, so signals come by time\n");
    good_ = job_.run();
    ASSERT_EQ(good_.result.status, 0);
    ASSERT_GT(good_.result.output.size(), 1000U);
    ASSERT_EQ(tornLine(good_.log), "");
    ASSERT_TRUE(good_.alive.empty());
    if (!job_.copies()) {
      ends_ = streamsOfWholePages(good_.result.output, job_.kind() == KilledJob::Kind::Pdf);
      ASSERT_NE(std::find(ends_.begin(), ends_.end(), good_.result.output), ends_.end());
    }
  }

  // By what a run takes.
  [[nodiscard]] int few() const { return job_.kind() == KilledJob::Kind::Pdf ? 12 : 20; }

  // Two of three at a system call, the others by time.
  Instant instant(int number) {
    const double part = std::uniform_real_distribution<>(0, 1)(random_);
    if (!holds_ || number % 3 == 0)
      return {0, std::chrono::duration_cast<std::chrono::microseconds>(part * good_.time)};
    return {1 + static_cast<uint64_t>(part * static_cast<double>(good_.calls)), {}};
  }

  // What holds of every run that a signal ended early.
  void expectNothingTorn(const Outcome& run) const {
    EXPECT_EQ(run.alive, std::vector<std::string>{});
    EXPECT_EQ(tornLine(run.log), "");
    EXPECT_TRUE(beginsWith(good_.result.output, run.result.output));
  }

  void expectOrderlyEnd(const Outcome& run) const {
    if (job_.copies()) {
      expectCopyOrNothing(run);
    } else if (run.result.status == 128 + SIGTERM) {
      expectNotBegun(run);
    } else {
      expectWholePages(run);
    }
  }

  // Passed on whole the copy is the next filter's.
  void expectCopyOrNothing(const Outcome& run) const {
    expectNothingTorn(run);
    if (run.result.status == 0) {
      EXPECT_TRUE(run.result.output == good_.result.output);
      EXPECT_EQ(run.left, good_.left);
    } else {
      EXPECT_TRUE(run.result.status == 1 || run.result.status == 128 + SIGTERM);
      EXPECT_EQ(run.left, std::vector<std::string>{});
    }
  }

  // Before the raster comes the signal ends the filter. Before there is a handler, which
  // is before there is a log, nobody is there to remove the copy.
  void expectNotBegun(const Outcome& run) const {
    expectNothingTorn(run);
    EXPECT_EQ(run.result.output, Bytes{});
    EXPECT_EQ(run.result.errors, "");
    for (const std::string& name : run.left)
      EXPECT_TRUE(name == kLog || (name == job_.pdfName() && run.log.empty())) << name;
  }

  void expectWholePages(const Outcome& run) const {
    EXPECT_EQ(run.alive, std::vector<std::string>{});
    EXPECT_EQ(tornLine(run.log), "");
    EXPECT_EQ(run.left, std::vector<std::string>{kLog});
    const bool begun = !run.result.output.empty();
    EXPECT_EQ(run.result.status, begun ? 0 : 1);
    EXPECT_TRUE(!begun || std::find(ends_.begin(), ends_.end(), run.result.output) != ends_.end())
        << "no whole pages: " << run.result.output.size() << " bytes";
    EXPECT_GE(pagesTold(run.result.errors), 0) << run.result.errors;
    ASSERT_FALSE(run.messages.empty());
    EXPECT_EQ(run.messages.back(), begun ? "EndDocOemPDEV finished" : "EndDoc, bufStart is 0x0");
  }

  // Whatever it left.
  void expectNextJob() {
    const std::string copy = "/tmp/" + job_.pdfName();
    if (job_.copies() && TempFile::exists(copy) && getxattr(copy.c_str(), kMark, nullptr, 0) < 0)
      return;  // /tmp keeps no attributes, so that no copy is replaced
    const Outcome next = job_.runAgain();
    EXPECT_EQ(next.result.status, 0);
    EXPECT_TRUE(next.result.output == good_.result.output) << next.log;
    EXPECT_EQ(next.result.errors, good_.result.errors);
    EXPECT_EQ(next.left, good_.left);
    EXPECT_EQ(tornLine(next.log), "");
  }

  KilledJob job_{GetParam()};
  bool holds_ = false;
  Outcome good_;
  std::vector<Bytes> ends_;
  std::mt19937 random_{20};
};

TEST_P(Killed, BySigtermEndsInOrder) {
  for (int number = 0; number < sweep(few(), 300); ++number) {
    const Instant when = instant(number);
    SCOPED_TRACE("call " + std::to_string(when.call) + " of " + std::to_string(good_.calls) +
                 ", time " + std::to_string(when.time.count()) + " us");
    const Outcome run = job_.run(SIGTERM, when);
    SCOPED_TRACE("status " + std::to_string(run.result.status) + '\n' + run.log);
    expectOrderlyEnd(run);
    if (HasFailure()) return;
  }
}

TEST_P(Killed, BySigkillLeavesNothingInTheNextJobsWay) {
  for (int number = 0; number < sweep(few() / 2, 100); ++number) {
    const Instant when = instant(number);
    SCOPED_TRACE("call " + std::to_string(when.call) + " of " + std::to_string(good_.calls) +
                 ", time " + std::to_string(when.time.count()) + " us");
    const Outcome run = job_.run(SIGKILL, when);
    SCOPED_TRACE("status " + std::to_string(run.result.status) + '\n' + run.log);
    EXPECT_TRUE(run.result.status == 128 + SIGKILL || run.result.status == 0);
    expectNothingTorn(run);
    expectNextJob();
    if (HasFailure()) return;
  }
}

// A copy is the next filter's once the job is passed on: an end that comes behind that is
// none of this job, and one before it leaves no copy.
class KilledCopier : public Killed {};

TEST_P(KilledCopier, NearItsEndLeavesTheCopyOfAJobThatIsPassedOnAndNoOther) {
  if (!holds_) GTEST_SKIP() << "no system calls can be held here";
  constexpr uint64_t kLast = 24;
  for (uint64_t behind = 0; behind < kLast; ++behind) {
    SCOPED_TRACE("call " + std::to_string(behind) + " before the last");
    expectOrderlyEnd(job_.run(SIGTERM, {good_.calls - behind, {}}));
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Killed,
                         ::testing::Values(KilledJob::Kind::Raster, KilledJob::Kind::Copies,
                                           KilledJob::Kind::Orlo, KilledJob::Kind::Pdf,
                                           KilledJob::Kind::PdfCopy),
                         [](const auto& kind) { return nameOf(kind.param); });
INSTANTIATE_TEST_SUITE_P(Of, KilledCopier, ::testing::Values(KilledJob::Kind::PdfCopy),
                         [](const auto& kind) { return nameOf(kind.param); });

}  // namespace
}  // namespace velka::testing
