// A job of the copying filter, as the scheduler starts it.
#pragma once

#include <string>

#include "Version.h"
#include "support/FilterRun.h"
#include "support/TestPdf.h"
#include "support/TestPpd.h"

namespace velka::testing {

/// Bytes that begin as a PDF does and are more than a pipe holds.
inline Bytes somePdf(size_t size = 200000) {
  Bytes bytes = {'%', 'P', 'D', 'F', '-', '1', '.', '4', '\n'};
  for (size_t i = bytes.size(); i < size; ++i) bytes.push_back(static_cast<uint8_t>(i * 7 % 251));
  return bytes;
}

inline std::string asText(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

/// What each job says first.
inline const std::string kVersionTold = "\nDEBUG: Velka " + std::string(version()) + "\n";

/// Copies are wanted unless the queue or the job says otherwise.
class CopyJob {
 public:
  explicit CopyJob(const std::string& name, bool wanted = true)
      : id(name), ppd_(ppdText({.modelNumber = 1, .options = {}, .pdfPreprocess = wanted})) {
    job.arguments = {id.text(), "user", "title", "1", ""};
    job.ppd = ppd_.path();
    job.input = somePdf();
  }
  FilterResult run() { return runFilter(VELKA_PDFCOPY, job); }

  JobId id;
  FilterJob job;

 private:
  TempFile ppd_;
};

}  // namespace velka::testing
