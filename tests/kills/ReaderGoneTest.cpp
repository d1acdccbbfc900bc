// A printer, or the next filter, that goes after so many bytes.
#include <gtest/gtest.h>
#include <unistd.h>

#include "kills/KilledJob.h"
#include "support/LogForm.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

constexpr size_t kPipe = 4096;  // what a pipe of the test's holds beyond what was read

// So many bytes; whoever asked closes the pipe then.
Bytes readUpTo(int fd, size_t most) {
  Bytes bytes(most);
  size_t done = 0;
  while (done < most) {
    const ssize_t n = read(fd, bytes.data() + done, most - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  bytes.resize(done);
  return bytes;
}

class ReaderGone : public ::testing::TestWithParam<KilledJob::Kind> {
 protected:
  // The print server learns of the end from the backend; the job itself runs to its own,
  // so that nothing of it stays.
  void expectPagesToTheEnd(const Outcome& good, const Outcome& run) {
    EXPECT_EQ(run.result.status, 0);
    EXPECT_EQ(run.result.errors, good.result.errors);
    EXPECT_EQ(run.left, good.left);
    EXPECT_EQ(tornLine(run.log), "");
    EXPECT_EQ(run.messages.size(), good.messages.size());
    EXPECT_EQ(run.messages.back(), "EndDocOemPDEV finished");
  }

  // A copy without a job would stay for ever.
  void expectCopyOrError(const Outcome& good, const Outcome& run, size_t read) {
    const bool passedOn = run.result.status == 0;
    EXPECT_EQ(run.result.status, passedOn ? 0 : 1);
    EXPECT_TRUE(!passedOn || read + kPipe >= good.result.output.size());
    EXPECT_EQ(run.left, passedOn ? good.left : std::vector<std::string>{});
    EXPECT_EQ(run.result.errors.find("\nERROR: Cannot pass the job on: Broken pipe\n") !=
                  std::string::npos,
              !passedOn);
  }

  KilledJob job_{GetParam()};
};

TEST_P(ReaderGone, AfterAnyNumberOfBytesTheJobEndsAsDecided) {
  const Outcome good = job_.run();
  const size_t size = good.result.output.size();
  ASSERT_GT(size, 1000U);
  const size_t rounds = sweep<size_t>(12, 200);
  for (size_t round = 0; round < rounds; ++round) {
    const size_t most = round * (size - 1) / (rounds - 1);
    SCOPED_TRACE(std::to_string(most) + " of " + std::to_string(size) + " bytes");
    const Outcome run = job_.runChanged([most](FilterJob& job) {
      job.drain = [most](int /*pid*/, int fd) { return readUpTo(fd, most); };
    });
    EXPECT_EQ(run.result.output.size(), most);
    EXPECT_TRUE(beginsWith(good.result.output, run.result.output));
    EXPECT_EQ(run.alive, std::vector<std::string>{});
    if (job_.copies()) {
      expectCopyOrError(good, run, most);
    } else {
      expectPagesToTheEnd(good, run);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ReaderGone,
                         ::testing::Values(KilledJob::Kind::Raster, KilledJob::Kind::Orlo,
                                           KilledJob::Kind::Pdf, KilledJob::Kind::PdfCopy),
                         [](const auto& kind) { return nameOf(kind.param); });

}  // namespace
}  // namespace velka::testing
