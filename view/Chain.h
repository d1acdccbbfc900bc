// A document through the whole chain: the system's filters and ours.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Arguments.h"
#include "Outcome.h"

namespace velka::view {

struct ChainJob {
  std::span<const uint8_t> document;
  std::string name;  ///< of the document's file; its ending may tell what it is
  std::string ppd;
  std::string options;             ///< as the print system hands them to filters
  bool pdfPreprocess = false;      ///< whether `options` ask for it
  std::optional<PageRange> pages;  ///< those to print, of the document as it is printed
};

struct Printed {
  std::vector<uint8_t> stream;
  bool pagesChosen = false;  ///< it holds the pages that were wanted and no other
};

/// Prints any document that the print system takes: its own tool (cupsfilter) tells the
/// filters, from what the document is to a raster, which are run one after the other;
/// rastovelka makes the stream. Where that tool is missing a PDF still goes its usual
/// way, pdftopdf and gstoraster (pdftoraster where that is missing).
///
/// Pages are chosen before they are drawn where pdftopdf is on the way, else from the
/// raster; not at all where pages come from a PDF copy that the raster's would no longer
/// match. What lies between the steps is kept in a folder of its own that goes at the
/// end, also where a signal ends the run. Our filter is looked for beside this program,
/// in the build tree, where it was installed together with this program, and among the
/// system's.
[[nodiscard]] Problem runChain(const ChainJob& job, Printed& printed);

}  // namespace velka::view
