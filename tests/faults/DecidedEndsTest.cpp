// Single failures whose end was decided, one by one.
#include <gtest/gtest.h>

#include "faults/FaultPlan.h"
#include "faults/FaultyJob.h"

namespace velka::testing {
namespace {

using Kind = FaultyJob::Kind;

size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

uint64_t callsOf(const FaultyJob& job, Function function) {
  return job.run(kNoFault).report.calls[static_cast<size_t>(function)];
}

class DecidedEnds : public ::testing::Test {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "this sanitizer does not let another library stand in front of it";
#endif
  }

  // A job whose PDF pages cannot be drawn or counted.
  static Trial pdfJob(const std::string& fault) {
    const FaultyJob job(Kind::PdfPage);
    return job.possible() ? job.run(fault) : Trial();
  }
};

// Each line asks for memory once, for its stream.
TEST_F(DecidedEnds, AStreamThatIsRefusedMemoryOnceCostsTheLogNoLine) {
  const FaultyJob job(Kind::Standard);
  const Trial good = job.run(kNoFault);
  for (const char* fault :
       {"fdopen:1:once:ENOMEM", "fdopen:2:once:ENOMEM", "fdopen:50:once:ENOMEM"}) {
    const Trial trial = job.run(fault);
    EXPECT_EQ(trial.report.failed, 1U);
    EXPECT_EQ(countOf(trial.log, "\r\n"), countOf(good.log, "\r\n")) << fault;
    EXPECT_EQ(trial.result.errors, good.result.errors);
  }
}

TEST_F(DecidedEnds, ALogThatIsLostOnTheWayIsToldOnStandardError) {
  const FaultyJob job(Kind::Standard);
  const Trial good = job.run(kNoFault);
  const Trial trial = job.run("fdopen:50:on:ENOMEM");
  EXPECT_EQ(trial.result.output, good.result.output);
  EXPECT_EQ(trial.result.errors, good.result.errors +
                                     "\nWARNING: The job log /tmp/velka.log ends "
                                     "early: it could not be opened again.\n");
}

TEST_F(DecidedEnds, ARasterThatCannotBeReadOnIsToldInTheLog) {
  const FaultyJob job(Kind::Standard);
  const uint64_t last = callsOf(job, Function::Read);
  const Trial trial = job.run("read:" + std::to_string(last - 2) + ":on:EIO");
  EXPECT_EQ(trial.result.status, 0);
  EXPECT_EQ(countOf(trial.log, "the raster is not read to its end: Input/output error"), 1U);
}

// What is there is no header any more.
TEST_F(DecidedEnds, NothingIsReadBehindAReadThatFailed) {
  constexpr uint64_t kOfTheRaster = 6;
  const FaultyJob job(Kind::Standard);
  const uint64_t last = callsOf(job, Function::Read);
  for (uint64_t n = last - kOfTheRaster; n < last; ++n) {
    const Trial trial = job.run("read:" + std::to_string(n) + ":once:EIO");
    EXPECT_EQ(countOf(trial.log, "the raster is not read to its end: Input/output error"), 1U) << n;
    EXPECT_EQ(trial.report.calls[static_cast<size_t>(Function::Read)], n);
  }
}

// The same where the filter itself has no memory for a line, though the page comes from
// elsewhere.
TEST_F(DecidedEnds, LinesWithoutMemoryOnAPdfPageAreToldInTheLog) {
  const FaultyJob job(Kind::PdfPage);
  if (!job.possible()) GTEST_SKIP() << "pdftoppm or ghostscript is not installed";
  bool told = false;
  for (uint64_t n = callsOf(job, Function::Calloc); n > 0 && !told; --n) {
    const Trial trial = job.run("calloc:" + std::to_string(n) + ":once:ENOMEM");
    if (std::string(trial.report.caller.data()) != "rastovelka") continue;
    told = countOf(trial.log, "the raster is not read to its end: Cannot allocate memory") == 1;
  }
  EXPECT_TRUE(told);
}

TEST_F(DecidedEnds, AnInterruptedReadCostsNothing) {
  const FaultyJob job(Kind::Standard);
  const Trial good = job.run(kNoFault);
  const uint64_t last = callsOf(job, Function::Read);
  const Trial trial = job.run("read:" + std::to_string(last - 1) + ":once:EINTR");
  EXPECT_EQ(trial.report.failed, 1U);
  EXPECT_EQ(trial.result.output, good.result.output);
  EXPECT_EQ(countOf(trial.log, "the raster is not read to its end"), 0U);
}

// Of a tool's two processes the first watches the second. The fourth is that of the second
// try, on pdfinfo alone.
TEST_F(DecidedEnds, APageCountWhoseToolCannotBeStartedIsToldInTheLog) {
  for (const char* fault : {"fork:1:once:EAGAIN", "fork:4:once:EAGAIN"}) {
    const Trial trial = pdfJob(fault);
    if (trial.log.empty()) GTEST_SKIP() << "pdftoppm or ghostscript is not installed";
    EXPECT_EQ(countOf(trial.log, "no page count from the PDF: its tool cannot be run"), 1U)
        << fault;
  }
}

// The status of a tool without its descriptors stands where the tool's own would.
TEST_F(DecidedEnds, AToolWithoutItsDescriptorsRunsNothingAndTheLogHasItsStatus) {
  const Trial trial = pdfJob("dup2:1:on:EMFILE");
  if (trial.log.empty()) GTEST_SKIP() << "pdftoppm or ghostscript is not installed";
  EXPECT_EQ(countOf(trial.log, ", ret: 32000"), 2U);
  EXPECT_EQ(countOf(trial.log, "PPM width: 0, height: 0"), 2U);
}

// Where its list of descriptors has no room for them, the PDF would go to the next filter.
TEST_F(DecidedEnds, AConverterWithoutItsDescriptorsIsNotStarted) {
  const FaultyJob job(Kind::PictureCopy);
  if (!job.possible()) GTEST_SKIP() << "pdftoppm is not installed";
  const uint64_t last = callsOf(job, Function::Realloc);
  size_t refused = 0;
  for (uint64_t n = 1; n <= last; ++n) {
    const Trial trial = job.run("realloc:" + std::to_string(n) + ":once:ENOMEM");
    if (std::string(trial.report.caller.data()).rfind("libc.", 0) != 0) continue;
    ++refused;
    EXPECT_EQ(trial.result.status, 1);
    EXPECT_EQ(trial.result.output, Bytes{});
    EXPECT_EQ(countOf(trial.result.errors, "ERROR: Cannot run "), 1U) << trial.result.errors;
  }
  EXPECT_GT(refused, 0U);
}

TEST_F(DecidedEnds, ACopyWithoutADescriptorStopsTheJobWithAWord) {
  const FaultyJob job(Kind::PdfCopy);
  if (!job.possible()) GTEST_SKIP() << "pdftoppm is not installed";
  const uint64_t last = callsOf(job, Function::FCntl);
  for (uint64_t n = 1; n <= last; ++n) {
    const Trial trial = job.run("fcntl:" + std::to_string(n) + ":once:EMFILE");
    if (trial.result.status == 0) continue;
    EXPECT_EQ(countOf(trial.result.errors, "\nERROR: "), 1U) << n;
    EXPECT_EQ(trial.left, std::vector<std::string>{});
  }
}

// Of the document, on its way into the copy or to the next filter, or of the PPD.
TEST_F(DecidedEnds, ACopyStopsTheJobWithAWordAtAnyReadOrWriteThatFails) {
  for (const Kind kind : {Kind::PdfCopy, Kind::PictureCopy}) {
    const FaultyJob job(kind);
    if (!job.possible()) GTEST_SKIP() << "pdftoppm is not installed";
    for (const auto& [function, name] :
         {std::pair(Function::Read, "read:"), std::pair(Function::Write, "write:")}) {
      const uint64_t last = callsOf(job, function);
      size_t own = 0;
      for (uint64_t n = 1; n <= last; ++n) {
        const Trial trial = job.run(name + std::to_string(n) + ":once:EIO");
        if (std::string(trial.report.caller.data()) != "velkapdfcopy") continue;
        if (trial.result.status == 0) continue;  // a message that went unsaid
        ++own;
        EXPECT_EQ(trial.result.status, 1) << name << n;
        EXPECT_EQ(countOf(trial.result.errors, "\nERROR: Cannot "), 1U)
            << name << n << trial.result.errors;
        EXPECT_EQ(trial.left, std::vector<std::string>{}) << name << n;
      }
      EXPECT_GT(own, 4U) << name;
    }
  }
}

TEST_F(DecidedEnds, AnEarlierRunsCopyThatCannotBeReplacedStopsTheJob) {
  FaultyJob job(Kind::PdfCopy);
  if (!job.possible()) GTEST_SKIP() << "pdftoppm is not installed";
  ASSERT_EQ(job.run(kNoFault).result.status, 0);
  job.keepWhatIsThere();
  if (job.run(kNoFault).result.status != 0) GTEST_SKIP() << "/tmp keeps no attributes";
  const Trial kept = job.run("unlink:1:once:EACCES");
  EXPECT_EQ(kept.result.status, 1);
  EXPECT_EQ(countOf(kept.result.errors, " is there already and none of our copies"), 1U);
  // Its name is free then, and is not to be had all the same.
  const Trial gone = job.run("linkat:2:once:EACCES");
  EXPECT_EQ(gone.result.status, 1);
  EXPECT_EQ(countOf(gone.result.errors, "\nERROR: Cannot make the PDF copy "), 1U);
  EXPECT_EQ(gone.result.output, Bytes{});
}

// It loses sight of a page, not the page.
TEST_F(DecidedEnds, AWatchThatLacksMemoryOncePassesTheRasterOnAllTheSame) {
  const FaultyJob job(Kind::Guard);
  const Trial good = job.run(kNoFault);
  const uint64_t last = good.report.calls[static_cast<size_t>(Function::New)];
  size_t passed = 0;
  for (uint64_t n = 1; n <= last; ++n) {
    const Trial trial = job.run("_Znwm:" + std::to_string(n) + ":once:ENOMEM");
    EXPECT_EQ(countOf(trial.result.errors, "\nERROR: No memory to watch the job's pages\n"), 1U)
        << n << trial.result.errors;
    if (trial.result.status != 0) continue;
    ++passed;
    EXPECT_EQ(trial.result.output, good.result.output) << n;
  }
  EXPECT_GT(passed, 0U);
}

// What is written there would be taken for the picture.
TEST_F(DecidedEnds, TheViewersChainNeverWritesToItsOwnOutput) {
  const FaultyJob job(Kind::View);
  const Trial good = job.run(kNoFault);
  const uint64_t last = good.report.calls[static_cast<size_t>(Function::Realloc)];
  bool refused = false;
  // The programs are started in its later half.
  for (uint64_t n = last * 3 / 4; n > 0 && !refused; --n) {
    const Trial trial = job.run("realloc:" + std::to_string(n) + ":once:ENOMEM");
    EXPECT_TRUE(trial.result.output.empty() || trial.result.output == good.result.output) << n;
    refused = trial.result.status == 1 &&
              countOf(trial.result.errors, ": Cannot allocate memory") == 1 &&
              trial.result.output.empty();
  }
  EXPECT_TRUE(refused);
}

}  // namespace
}  // namespace velka::testing
