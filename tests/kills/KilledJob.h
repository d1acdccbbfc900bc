// A kind of job that is run again and again and ended from outside at another instant.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "kills/Killer.h"
#include "support/FilterRun.h"
#include "support/TestPdf.h"
#include "support/TestPpd.h"
#include "support/TmpFiles.h"

namespace velka::testing {

/// What one run came to.
struct Outcome {
  FilterResult result;
  std::string log;
  std::vector<std::string> messages;  ///< of the log
  std::vector<std::string> left;      ///< names below /tmp that were not there before
  std::vector<std::string> alive;     ///< command lines of processes that outlived it
  uint64_t calls = 0;                 ///< system calls seen
  std::chrono::microseconds time{0};
};

class KilledJob {
 public:
  enum class Kind : uint8_t { Raster, Copies, Orlo, Pdf, PdfCopy };

  explicit KilledJob(Kind kind);

  [[nodiscard]] Kind kind() const { return kind_; }
  /// Whether it is the copier's and not the printing filter's.
  [[nodiscard]] bool copies() const { return kind_ == Kind::PdfCopy; }
  /// The name below /tmp of its PDF.
  [[nodiscard]] std::string pdfName() const { return "VK_TEMP_CUPS_" + id_.text() + ".pdf"; }

  /// Runs it in a /tmp as before the first run, to its end or that instant.
  Outcome run(int signal = 0, Instant when = {});
  /// Runs it in the /tmp that the last run left.
  Outcome runAgain(int signal = 0, Instant when = {});
  /// Runs it in a /tmp as before the first run, changed and with nobody who counts its system
  /// calls.
  Outcome runChanged(const std::function<void(FilterJob& job)>& change);
  /// Runs it beside others, whose processes and files in /tmp are not looked at.
  FilterResult runBeside();
  /// Lets anybody run the program and read what it needs.
  void openToAll();
  /// The tools that it finds.
  [[nodiscard]] const ToolFolder& tools() const { return tools_; }

 private:
  [[nodiscard]] Outcome outcomeOf(const FilterJob& job) const;
  void makeRasterJob(int model, unsigned copies);
  void makePdfJob();
  void putDocument() const;
  [[nodiscard]] std::vector<std::string> alive() const;

  Kind kind_;
  JobId id_{"kill"};
  TempFolder folder_;
  ToolFolder tools_;
  std::string program_;
  FilterJob job_;
  TmpFiles tmp_;
};

/// Command lines of the processes that have this "NAME=VALUE" in their environment, but for
/// this one, and ends them. What has been killed may take a moment to be gone.
std::vector<std::string> aliveWith(const std::string& mark);

/// For the names of tests.
std::string nameOf(KilledJob::Kind kind);
inline void PrintTo(KilledJob::Kind kind, std::ostream* out) {
  *out << nameOf(kind);
}

/// The pages of a stream, each to its form feed; the end of the document is left out.
std::vector<Bytes> pagesOf(const Bytes& stream);

/// One behind the other.
Bytes joined(Bytes bytes, const Bytes& more);

/// What ends a document, and what a page of such a job that stays white is: its start and its
/// length.
Bytes endOfDocument();
Bytes whitePageOf(const Bytes& stream);

bool beginsWith(const Bytes& bytes, const Bytes& head);

}  // namespace velka::testing
