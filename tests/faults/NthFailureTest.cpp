// Every call that can fail, failed: the n-th of a function, alone and with all behind it.
//
// Each ./test.sh tries the first, the last and some calls between of every function; with
// VELKA_FAULT_SWEEP set (./dev faults) no call is left out.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "faults/FaultPlan.h"
#include "faults/FaultyJob.h"
#include "faults/Traces.h"

namespace velka::testing {
namespace {

struct Fault {
  Function function;
  std::vector<const char*> actions;
};

// Interruptions come once: no system interrupts each call for ever.
const std::vector<Fault> kFaults = {{Function::Malloc, {"ENOMEM"}},
                                    {Function::Calloc, {"ENOMEM"}},
                                    {Function::Realloc, {"ENOMEM"}},
                                    {Function::New, {"ENOMEM"}},
                                    {Function::Open, {"EMFILE", "EINTR"}},
                                    {Function::OpenAt, {"EMFILE", "EINTR"}},
                                    {Function::Read, {"EIO", "EINTR", "short"}},
                                    {Function::Write, {"ENOSPC", "EINTR", "short"}},
                                    {Function::FOpen, {"EMFILE"}},
                                    {Function::FDOpen, {"ENOMEM"}},
                                    {Function::FWrite, {"ENOSPC", "EINTR", "short"}},
                                    {Function::FSync, {"EIO", "EINTR"}},
                                    {Function::FDataSync, {"EIO", "EINTR"}},
                                    {Function::Close, {"EIO", "EINTR"}},
                                    {Function::Link, {"EPERM"}},
                                    {Function::LinkAt, {"EPERM"}},
                                    {Function::Rename, {"EPERM"}},
                                    {Function::Unlink, {"EPERM"}},
                                    {Function::Fork, {"EAGAIN"}},
                                    {Function::VFork, {"EAGAIN"}},
                                    {Function::PosixSpawn, {"EAGAIN"}},
                                    {Function::Pipe, {"EMFILE"}},
                                    {Function::Pipe2, {"EMFILE"}},
                                    {Function::Dup, {"EMFILE"}},
                                    {Function::Dup2, {"EMFILE", "EINTR"}},
                                    {Function::Dup3, {"EMFILE", "EINTR"}},
                                    {Function::FCntl, {"EMFILE", "EINTR"}},
                                    {Function::Stat, {"EACCES"}},
                                    {Function::LStat, {"EACCES"}},
                                    {Function::FStat, {"EIO"}},
                                    {Function::MkDir, {"ENOSPC"}},
                                    {Function::FLock, {"EINTR"}},
                                    {Function::FSetXAttr, {"ENOSPC"}},
                                    {Function::PThreadCreate, {"EAGAIN"}},
                                    {Function::MMap, {"ENOMEM"}}};

// One way to fail a function, and the point that is being tried.
struct Way {
  Function function;
  std::string action;
  bool once;
  [[nodiscard]] std::string at(uint64_t n) const {
    return kFunctionNames[static_cast<size_t>(function)] + (':' + std::to_string(n)) +
           (once ? ":once:" : ":on:") + action;
  }
};

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool beginsWith(const Bytes& bytes, const Bytes& head) {
  return head.size() <= bytes.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

class NthFailure : public ::testing::TestWithParam<FaultyJob::Kind> {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "this sanitizer does not let another library stand in front of it";
#endif
    if (!job_.possible()) GTEST_SKIP() << "pdftoppm or ghostscript is not installed";
    good_ = job_.run(kNoFault);
    ASSERT_EQ(good_.result.status, 0) << good_.result.errors;
    ASSERT_GT(calls(Function::Malloc), 0U) << "the shim sees nothing";
    ASSERT_GT(good_.result.output.size(), 100U);
    if (job_.kind() == FaultyJob::Kind::PdfPage) ofRaster_ = job_.outputOfRaster();
  }

  // As often as the good job makes them.
  [[nodiscard]] uint64_t calls(Function function) const {
    return good_.report.calls[static_cast<size_t>(function)];
  }

  // The points of the short form: for a function that fails from one on they matter less.
  // Those between differ from job to job.
  [[nodiscard]] std::set<uint64_t> someOf(const Way& way) const {
    const uint64_t last = calls(way.function);
    if (last == 0) return {};
    const uint64_t between = 1 + last * (static_cast<uint64_t>(job_.kind()) + 1) / 9;
    // The viewer's chain is several programs long.
    if (job_.kind() != FaultyJob::Kind::View && way.once &&
        (way.action[0] == 'E' && way.action != "EINTR"))
      return {1, between, last};
    return {std::min(between, last)};
  }

  void tryWay(const Way& way) {
    if (std::getenv("VELKA_FAULT_SWEEP") == nullptr) {
      for (const uint64_t n : someOf(way)) (void)touches(way, n);
    } else if (calls(way.function) > 0) {
      uint64_t n = 1;
      while (touches(way, n)) ++n;
    }
  }

  // Whether the job made as many calls.
  bool touches(const Way& way, uint64_t n) {
    SCOPED_TRACE(way.at(n));
    const Trial trial = job_.run(way.at(n));
    if (trial.report.failed == 0) return false;
    if (isSanitizersOwn(trial)) return true;
    ++points_;
    SCOPED_TRACE(trial.result.errors + "\n" + trial.report.caller.data() + "\n" + trial.log);
    expectDecidedEnd(trial, way);
    return true;
  }

  void expectDecidedEnd(const Trial& trial, const Way& way) {
    const int status = trial.result.status;
    EXPECT_NE(status, 128 + SIGALRM) << "it hangs";
    EXPECT_FALSE(holds(trial.result.errors, "Sanitizer") ||
                 holds(trial.result.errors, "runtime error"));
    if (status > 128) {
      EXPECT_TRUE(isRecordCrash(trial.report) || isCupsCrash(trial.report))
          << "signal " << status - 128 << " in " << trial.report.faultIn.data();
      EXPECT_TRUE(beginsWith(good_.result.output, trial.result.output));
      return;
    }
    EXPECT_TRUE(status == 0 || status == 1) << status;
    if (job_.prints()) {
      expectPages(trial, way);
    } else {
      expectWholeOrStopped(trial, way);
    }
  }

  // The copier passes the whole job on and leaves the copy, or it leaves nothing and stops
  // the job with an error; the viewer likewise, and leaves nothing either way.
  void expectWholeOrStopped(const Trial& trial, const Way& way) const {
    const bool whole = trial.result.output == good_.result.output;
    EXPECT_TRUE(beginsWith(good_.result.output, trial.result.output) || drawsByHalfAPpd(trial));
    if (trial.result.status == 0) {
      EXPECT_TRUE(whole || drawsByHalfAPpd(trial));
    } else {
      EXPECT_TRUE(mute(way) || tellsOfLoss(trial, good_)) << "nobody is told";
    }
    if (canCleanUp(way)) {
      const bool left = trial.result.status == 0 && job_.kind() != FaultyJob::Kind::View;
      for (const std::string& name : trial.left)
        EXPECT_TRUE(name == "velka.log" || (left && holds(name, ".pdf"))) << name;
    }
  }

  // What libcups had no memory for is not in the PPD, and nobody can tell; the viewer then
  // draws on other paper.
  [[nodiscard]] bool drawsByHalfAPpd(const Trial& trial) const {
    return job_.kind() == FaultyJob::Kind::View && trial.result.status == 0 &&
           std::string(trial.report.caller.data()).rfind("libcups", 0) == 0;
  }

  // Its messages go by the same function.
  [[nodiscard]] bool mute(const Way& way) const {
    return !way.once && (way.function == Function::Write || way.function == Function::FWrite);
  }

  // Without these for good, the viewer cannot find what it has made.
  [[nodiscard]] bool canCleanUp(const Way& way) const {
    if (way.function == Function::Unlink) return false;
    return job_.kind() != FaultyJob::Kind::View || way.once;
  }

  // A job that loses anything says so, but for a crash. An option that libcups had no
  // memory for is not in the PPD; without that of the PDF the pages come from the raster.
  void expectPages(const Trial& trial, const Way& way) const {
    const bool fromRaster = !ofRaster_.empty() && trial.result.output == ofRaster_;
    const bool whole = trial.result.output == good_.result.output || fromRaster;
    EXPECT_TRUE(whole || tellsOfLoss(trial, good_)) << "nobody is told";
    EXPECT_TRUE(way.function != Function::Write ||
                beginsWith(good_.result.output, trial.result.output));
    // What cannot be looked at or removed stays.
    if (way.function != Function::LStat && way.function != Function::FStat &&
        way.function != Function::Unlink)
      expectFiles(trial);
  }

  // Nothing but the log stays, unless the filter could not know better: without a PPD or a
  // raster nothing is cleaned up, without a page count pictures are not found.
  void expectFiles(const Trial& trial) const {
    const bool noCleaning = holds(trial.result.errors, "The PPD file could not be opened.") ||
                            holds(trial.result.errors, "cupsRasterOpen failed.");
    const bool noCount = holds(trial.log, "no page count") || trial.log.empty() ||
                         holds(trial.result.errors, "WARNING: The job log");
    for (const std::string& name : trial.left) {
      const bool pdf = name.ends_with(".pdf");
      const bool picture = name.ends_with(".ppm");
      EXPECT_TRUE(name == "velka.log" || (pdf && noCleaning) || (picture && noCount)) << name;
    }
  }

  FaultyJob job_{GetParam()};
  Trial good_;
  Bytes ofRaster_;
  int points_ = 0;
};

TEST_P(NthFailure, EndsTheJobAsDecided) {
  for (const Fault& fault : kFaults)
    for (const std::string action : fault.actions) {
      tryWay({fault.function, action, true});
      if (action != "EINTR") tryWay({fault.function, action, false});
    }
  std::printf("%d points\n", points_);
}

std::string nameOf(const ::testing::TestParamInfo<FaultyJob::Kind>& kind) {
  constexpr std::array kNames = {"Standard", "Orlo",        "Split", "Turned", "PdfPage",
                                 "PdfCopy",  "PictureCopy", "Guard", "View"};
  return kNames[static_cast<size_t>(kind.param)];
}

INSTANTIATE_TEST_SUITE_P(Of, NthFailure,
                         ::testing::Values(FaultyJob::Kind::Standard, FaultyJob::Kind::Orlo,
                                           FaultyJob::Kind::Split, FaultyJob::Kind::Turned,
                                           FaultyJob::Kind::PdfPage, FaultyJob::Kind::PdfCopy,
                                           FaultyJob::Kind::PictureCopy, FaultyJob::Kind::Guard,
                                           FaultyJob::Kind::View),
                         nameOf);

}  // namespace
}  // namespace velka::testing
