// A kind of job that is run again and again, each time with another call that fails.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "faults/FaultReport.h"
#include "support/FilterRun.h"
#include "support/TestPdf.h"
#include "support/TestPpd.h"

namespace velka::testing {

/// What one run came to.
struct Trial {
  FilterResult result;
  FaultReport report;
  std::string log;
  std::vector<std::string> left;  ///< names below /tmp that were not there before
};

/// Names below /tmp, in order.
std::vector<std::string> namesInTmp();

class FaultyJob {
 public:
  enum class Kind : uint8_t {
    Standard,
    Orlo,
    Split,
    Turned,
    PdfPage,
    PdfCopy,
    PictureCopy,
    Guard,
    View
  };

  explicit FaultyJob(Kind kind);

  /// Whether what it needs is installed.
  [[nodiscard]] bool possible() const { return possible_; }
  [[nodiscard]] Kind kind() const { return kind_; }
  /// Whether it is the printing filter's, and not the copier's or the viewer's.
  [[nodiscard]] bool prints() const { return kind_ <= Kind::PdfPage; }

  /// Runs it under a fault as VELKA_FAULT has it, in a /tmp as before the first run. The
  /// program under test ends by SIGALRM where it takes longer than it may, twice: a machine
  /// may stall, a job that hangs does so again.
  [[nodiscard]] Trial run(const std::string& fault) const;

  /// From here on each run finds what the one before has left below /tmp.
  void keepWhatIsThere() { before_ = namesInTmp(); }

  /// The output where the PPD does not want pages from the PDF, without a fault.
  [[nodiscard]] Bytes outputOfRaster() const;

 private:
  [[nodiscard]] Trial attempt(const std::string& fault) const;
  [[nodiscard]] std::string preloaded() const;
  void restoreTmp() const;
  void makeRasterJob(int model, const std::vector<std::pair<std::string, std::string>>& options);
  void makePdfJob();
  void makeCopyJob(bool picture);
  void makeViewJob();

  Kind kind_;
  bool possible_ = true;
  JobId id_{"fault"};
  TempFolder folder_;
  std::string program_;
  std::string document_;  ///< the PDF that lies under /tmp when the job starts
  FilterJob job_;
  std::vector<std::string> before_;
};

/// A fault that never comes: the run counts calls and is as good as any.
inline constexpr const char* kNoFault = "malloc:1000000000:once:ENOMEM";

}  // namespace velka::testing
