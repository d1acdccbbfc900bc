// A document through the whole chain: the system's filters and ours.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Arguments.h"
#include "ChainTools.h"
#include "Files.h"
#include "Outcome.h"
#include "WorkFolder.h"

namespace velka::view {

struct ChainJob {
  std::span<const uint8_t> document;
  std::string name;  ///< of the document's file; its ending may tell what it is
  std::string ppd;
  std::string options;             ///< as the print system hands them to filters
  bool pdfPreprocess = false;      ///< whether `options` ask for it
  std::optional<PageRange> pages;  ///< those to print, of the document as it is printed
  bool quiet = false;              ///< tells nobody which step it is at
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

/// The same in two steps, so that a raster may be printed several times. The raster lies in
/// a folder of its own that goes with this object; what `job` and `held` are must outlive
/// it.
class Chain {
 public:
  /// Whether a step is not wanted any more, asked while it runs.
  using Unwanted = std::function<bool()>;

  Chain(const ChainJob& job, const SignalsHeld& held) : job_(job), held_(held) {}

  [[nodiscard]] Problem makeRaster(const Unwanted& unwanted = {});
  /// The raster's file, once there is one.
  [[nodiscard]] const std::string& raster() const { return raster_; }
  /// Whether it holds the pages that were wanted and no other.
  [[nodiscard]] bool pagesChosen() const { return chosen_; }
  /// Runs our filter on it with these options, which may say nothing that would have made
  /// another raster. One run at a time.
  [[nodiscard]] Problem print(const std::string& options, Printed& printed,
                              const Unwanted& unwanted = {});

 private:
  [[nodiscard]] Problem layOutDocument();
  [[nodiscard]] Problem runWay();
  [[nodiscard]] Problem chooseFromPdf(const std::string& output);
  [[nodiscard]] Problem chooseFromRaster();
  [[nodiscard]] Problem noSuchPage(const std::string& pages) const;
  [[nodiscard]] Problem findCopy(const std::string& last);
  [[nodiscard]] Problem step(const std::string& program, const std::string& options,
                             const std::string& output, bool mayBeSilent = false);

  const ChainJob& job_;
  const SignalsHeld& held_;
  WorkFolder folder_;
  ChainTools tools_{folder_, held_};
  PdfCopy copy_{folder_.id()};
  std::vector<std::string> way_;
  std::string type_ = "application/vnd.cups-raster";
  std::string now_;       // the file that the next step takes
  std::string raster_;    // what our filter gets
  std::string copyFrom_;  // the PDF that it takes pages from; empty: it takes none
  Unwanted unwanted_;
  int ending_ = SIGKILL;  // nothing to put in order but what goes with the folder
  bool chosen_ = false;
};

}  // namespace velka::view
