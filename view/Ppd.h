// What a PPD and a job's options say about the printer and the paper.
#pragma once

#include <cups/ppd.h>

#include <cstdint>
#include <memory>
#include <string>

#include "Head.h"
#include "Outcome.h"

namespace velka::view {

struct ClosePpd {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};
using PpdFile = std::unique_ptr<ppd_file_t, ClosePpd>;

/// Opens a PPD; null where it cannot be read, and why in `problem`.
[[nodiscard]] PpdFile openPpd(const std::string& name, Problem& problem);

/// Why a PPD is none of this system's printers: it names neither our filter nor us.
/// None where it is, or cannot be read.
[[nodiscard]] Problem otherMaker(const std::string& name);

struct PpdFacts {
  decode::Model model = decode::Model::Standard;
  int64_t paperWidth = 0;      ///< units, of the page as it leaves the printer
  bool pdfPreprocess = false;  ///< pages come from a PDF copy of the job
};

/// Reads a PPD with its defaults and then `options` marked.
[[nodiscard]] Problem readPpd(const std::string& name, const std::string& options, PpdFacts& facts);

}  // namespace velka::view
