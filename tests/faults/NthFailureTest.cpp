// Every call that can fail, failed: the n-th of a function, alone and with all behind it.
//
// Each ./test.sh tries the first calls of every function and a spread of the others; with
// VELKA_FAULT_SWEEP set (./dev faults) no call is left out.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "LogData.h"
#include "faults/FaultyJob.h"

namespace velka::testing {
namespace {

struct Fault {
  const char* function;
  std::vector<const char*> actions;
};

// Interruptions come once: no system interrupts each call for ever.
const std::vector<Fault> kFaults = {{"malloc", {"ENOMEM"}},
                                    {"calloc", {"ENOMEM"}},
                                    {"realloc", {"ENOMEM"}},
                                    {"open", {"EMFILE"}},
                                    {"openat", {"EMFILE"}},
                                    {"read", {"EIO", "EINTR", "short"}},
                                    {"write", {"ENOSPC", "EINTR", "short"}},
                                    {"fsync", {"EIO"}},
                                    {"fdatasync", {"EIO"}},
                                    {"close", {"EIO"}},
                                    {"link", {"EPERM"}},
                                    {"linkat", {"EPERM"}},
                                    {"rename", {"EPERM"}},
                                    {"unlink", {"EPERM"}},
                                    {"fork", {"EAGAIN"}},
                                    {"vfork", {"EAGAIN"}},
                                    {"posix_spawn", {"EAGAIN"}},
                                    {"pipe", {"EMFILE"}},
                                    {"pipe2", {"EMFILE"}},
                                    {"dup", {"EMFILE"}},
                                    {"dup2", {"EMFILE"}},
                                    {"dup3", {"EMFILE"}},
                                    {"fcntl", {"EMFILE"}},
                                    {"stat", {"EACCES"}},
                                    {"lstat", {"EACCES"}},
                                    {"fstat", {"EIO"}},
                                    {"mkdir", {"ENOSPC"}},
                                    {"flock", {"EINTR"}},
                                    {"fsetxattr", {"ENOSPC"}},
                                    {"pthread_create", {"EAGAIN"}},
                                    {"mmap", {"ENOMEM"}}};

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool beginsWith(const Bytes& bytes, const Bytes& head) {
  return head.size() <= bytes.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

bool startsWith(const std::string& text, const std::string& head) {
  return text.rfind(head, 0) == 0;
}

// A record of the log that cannot be had: the one crash that is wanted.
bool isRecordCrash(const FaultReport& report) {
  return report.signal == SIGSEGV && report.faultAddress == 0 &&
         report.lastSize == sizeof(LogData) && startsWith(report.caller.data(), "rastovelka") &&
         startsWith(report.faultIn.data(), "rastovelka");
}

// libcups does not look at all of its own allocations.
bool isCupsCrash(const FaultReport& report) {
  return report.signal == SIGSEGV && startsWith(report.caller.data(), "libcups") &&
         startsWith(report.faultIn.data(), "libcups");
}

// What the log says of a page, of all options, and of the way to the printer.
std::string toldOptions(const std::string& log) {
  std::string options;
  for (size_t at = 0; (at = log.find("Init ", at)) != std::string::npos; ++at)
    options += log.substr(at, log.find('\r', at) - at);
  return options;
}

bool logTells(const std::string& log, const std::string& goodLog) {
  for (const char* words : {"is not printed", "is printed", "no page"})
    if (holds(log, words)) return true;
  return toldOptions(log) != toldOptions(goodLog);
}

// What the log cannot do without either, gone for good.
bool takesLogToo(const std::string& function, const std::string& mode) {
  return mode == "on" && (function == "open" || function == "fstat");
}

class NthFailure : public ::testing::TestWithParam<FaultyJob::Kind> {
 protected:
  void SetUp() override {
#ifdef VELKA_SANITIZED
    GTEST_SKIP() << "the sanitizers stand in front of the same functions";
#endif
    if (!job_.possible()) GTEST_SKIP() << "pdftoppm or ghostscript is not installed";
    good_ = job_.run("malloc:1000000000:once:ENOMEM");
    ASSERT_EQ(good_.result.status, 0);
    ASSERT_GT(good_.report.seen, 10U) << "the shim sees nothing";
    ASSERT_GT(good_.result.output.size(), 100U);
  }

  // By what a run takes.
  [[nodiscard]] int spread() const {
    if (job_.copies()) return 7;
    return job_.kind() == FaultyJob::Kind::PdfPage ? 97 : 37;
  }

  // Tries n = 1, 2, ... until the job runs untouched.
  void tryAll(const std::string& function, const std::string& mode, const std::string& action) {
    constexpr int kFirst = 3;
    const int stride = std::getenv("VELKA_FAULT_SWEEP") == nullptr ? spread() : 1;
    for (int n = 1;; n += n < kFirst ? 1 : stride) {
      const std::string fault = function + ':' + std::to_string(n) + ':' + mode + ':' + action;
      SCOPED_TRACE(fault);
      const Trial trial = job_.run(fault);
      if (trial.report.failed == 0) break;
      ++points_;
      expectDecidedEnd(trial, function, mode);
    }
  }

  void expectDecidedEnd(const Trial& trial, const std::string& function, const std::string& mode) {
    const int status = trial.result.status;
    SCOPED_TRACE(trial.result.errors + "\n" + trial.report.caller.data() + "\n" + trial.log);
    ASSERT_NE(status, 128 + SIGALRM) << "it hangs";
    if (status > 128) {
      EXPECT_TRUE(isRecordCrash(trial.report) || isCupsCrash(trial.report))
          << "signal " << status - 128 << " in " << trial.report.faultIn.data();
      EXPECT_TRUE(beginsWith(good_.result.output, trial.result.output));
      return;
    }
    EXPECT_TRUE(status == 0 || status == 1) << status;
    if (job_.copies()) {
      expectCopy(trial, function, mode);
    } else {
      expectPages(trial, function, mode);
    }
  }

  // The copier passes the whole job on and leaves the copy, or it leaves nothing and stops
  // the job with an error.
  void expectCopy(const Trial& trial, const std::string& function, const std::string& mode) const {
    const bool silenced = function == "write" && mode == "on";
    EXPECT_TRUE(beginsWith(good_.result.output, trial.result.output));
    if (trial.result.status == 0) {
      EXPECT_EQ(trial.result.output.size(), good_.result.output.size());
      EXPECT_TRUE(function == "unlink" || trial.left == good_.left);
    } else {
      EXPECT_TRUE(function == "unlink" || trial.left.empty());
      EXPECT_TRUE(silenced || holds(trial.result.errors, "\nERROR: "));
    }
  }

  // A job that loses anything says so: in the log, in a text on standard error, or by its
  // status. What is behind a raster that cannot be read is not there.
  void expectPages(const Trial& trial, const std::string& function, const std::string& mode) const {
    const bool whole = trial.result.output == good_.result.output;
    if (function == "write") {
      EXPECT_TRUE(beginsWith(good_.result.output, trial.result.output));
      // A disk that is full for good takes the log's lines as well.
      EXPECT_TRUE(whole || mode == "on" ||
                  holds(trial.log, "the job is not printed to its end: No space left"));
    } else if (!whole && function != "read" && !takesLogToo(function, mode)) {
      EXPECT_TRUE(trial.result.errors != good_.result.errors ||
                  trial.result.status != good_.result.status || logTells(trial.log, good_.log))
          << "nobody is told";
    }
    // What cannot be looked at or removed stays.
    if (function != "lstat" && function != "fstat" && function != "unlink")
      expectFiles(trial, function == "read");
  }

  // Nothing but the log stays, unless the filter could not know better: without a PPD or a
  // raster nothing is cleaned up, without a page count pictures are not found.
  void expectFiles(const Trial& trial, bool countUnread) const {
    const bool noCleaning = holds(trial.result.errors, "The PPD file could not be opened.") ||
                            holds(trial.result.errors, "cupsRasterOpen failed.");
    const bool noCount = holds(trial.log, "no page count") || trial.log.empty();
    for (const std::string& name : trial.left) {
      const bool pdf = name.ends_with(".pdf");
      const bool picture = name.ends_with(".ppm");
      EXPECT_TRUE(name == "velka.log" || (pdf && noCleaning) ||
                  (picture && (noCount || countUnread)))
          << name;
    }
  }

  FaultyJob job_{GetParam()};
  Trial good_;
  int points_ = 0;
};

TEST_P(NthFailure, EndsTheJobAsDecided) {
  for (const Fault& fault : kFaults)
    for (const std::string action : fault.actions) {
      tryAll(fault.function, "once", action);
      if (action != "EINTR") tryAll(fault.function, "on", action);
    }
  std::printf("%d points\n", points_);
}

std::string nameOf(const ::testing::TestParamInfo<FaultyJob::Kind>& kind) {
  constexpr std::array kNames = {"Standard", "Orlo",    "Split",      "Turned",
                                 "PdfPage",  "PdfCopy", "PictureCopy"};
  return kNames[static_cast<size_t>(kind.param)];
}

INSTANTIATE_TEST_SUITE_P(Of, NthFailure,
                         ::testing::Values(FaultyJob::Kind::Standard, FaultyJob::Kind::Orlo,
                                           FaultyJob::Kind::Split, FaultyJob::Kind::Turned,
                                           FaultyJob::Kind::PdfPage, FaultyJob::Kind::PdfCopy,
                                           FaultyJob::Kind::PictureCopy),
                         nameOf);

}  // namespace
}  // namespace velka::testing
