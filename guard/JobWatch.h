// What the print scheduler is told of a job while its pages go by.
#pragma once

#include <cups/ppd.h>
#include <cups/raster.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Descriptor.h"
#include "HeaderCheck.h"
#include "ToolLimits.h"

namespace velka {

/// How often the printing filter prints each page, all of them one behind the other or page
/// by page. The first header of a job says so to the standard model; the Orlo model prints
/// each page once.
struct Copies {
  uint32_t count = 1;
  bool collated = false;
};
[[nodiscard]] Copies copiesOf(const cups_page_header2_t& firstHeader, bool orlo) noexcept;

/// "Printing page 3", and how many copies of it.
[[nodiscard]] std::string progressText(uint64_t page, const Copies& copies);

/// Which of a job's pages are not in a PDF of fewer.
[[nodiscard]] std::string missingPagesText(uint64_t pages, uint64_t inCopy);

/// Tells the scheduler what happens to the pages of one job. Where memory runs out, that is
/// told instead: the pages themselves go on.
class JobWatch {
 public:
  /// Both stay their owner's; no PPD is the standard model's.
  JobWatch(ppd_file_t* ppd, const char* jobId) noexcept : ppd_(ppd), jobId_(jobId) {}

  /// A page's header has come. False where the job had better stop before it: nothing of it
  /// would print, and nothing was printed so far.
  [[nodiscard]] bool pageBegins(const cups_page_header2_t& header) noexcept;

  /// So much of the page's lines went by (0 to 100).
  void pagePassed(int percent) noexcept;

  /// All of the page's lines went by, or the raster ended in it: it is printed.
  void pageEnds() noexcept;

  /// No page follows: the rest of the copies is printed.
  void pagesEnd() noexcept;

  /// Tells of pages that are not in the job's PDF copy, where they come from it. Runs a tool,
  /// so it is for when nobody waits any more.
  void checkCopyPages(const ToolWatch& watch) const noexcept;

  /// The page in work, or the last one; 0 before the first.
  [[nodiscard]] uint64_t page() const noexcept { return page_; }

 private:
  void jobBegins(const cups_page_header2_t& header);
  [[nodiscard]] bool findCopy();

  ppd_file_t* ppd_;
  const char* jobId_;
  Copies copies_;
  uint64_t page_ = 0;
  bool printed_ = false;  // the page in work
  int told_ = 0;          // of its progress
  std::vector<uint64_t> notPrinted_;
  UniqueFd copy_;  // of the job's PDF, whose name may go before we have counted its pages
};

}  // namespace velka
