// A PPD of a few options, open.
#pragma once

#include <cups/ppd.h>

#include <string>
#include <utility>
#include <vector>

#include "support/TestPpd.h"

namespace velka::testing {

using Options = std::vector<std::pair<std::string, std::string>>;

/// A PPD with these options, opened and with its defaults marked.
class OpenPpd {
 public:
  explicit OpenPpd(const Options& options, int modelNumber = 1)
      : file_(ppdText({modelNumber, options, false})), ppd_(ppdOpenFile(file_.path().c_str())) {
    if (ppd_ != nullptr) ppdMarkDefaults(ppd_);
  }
  ~OpenPpd() { ppdClose(ppd_); }
  OpenPpd(const OpenPpd&) = delete;
  OpenPpd& operator=(const OpenPpd&) = delete;
  operator ppd_file_t*() const { return ppd_; }

 private:
  TempFile file_;
  ppd_file_t* ppd_;
};

}  // namespace velka::testing
