// A PDF through the whole chain: the system's filters and ours.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Outcome.h"

namespace velka::view {

struct ChainJob {
  std::span<const uint8_t> pdf;
  std::string title;
  std::string ppd;
  std::string options;         ///< as the print system hands them to filters
  bool pdfPreprocess = false;  ///< whether `options` ask for it
};

/// Prints a PDF into `stream`: pdftopdf, gstoraster (pdftoraster where that is
/// missing) and rastovelka. What lies between them is kept in a folder of its own
/// that goes at the end, also where a signal ends the run. Our filter is looked for
/// beside this program, in the build tree, where it was installed together with this
/// program, and among the system's.
[[nodiscard]] Problem runChain(const ChainJob& job, std::vector<uint8_t>& stream);

}  // namespace velka::view
