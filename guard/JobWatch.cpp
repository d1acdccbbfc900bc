#include "JobWatch.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <new>

#include "FilterMessages.h"
#include "FixedText.h"
#include "HeaderFields.h"
#include "JobPdf.h"
#include "MarkedOptions.h"
#include "PageCount.h"
#include "PageLimit.h"
#include "PlainNames.h"

namespace velka {
namespace {

void raise(Trouble trouble) {
  tellScheduler(MessageLevel::State, std::string("+").append(stateReason(trouble)));
}

void tellLostSight() noexcept {
  tellOutOfMemory("No memory to watch the job's pages");
}

void account(uint64_t page, uint32_t copies) {
  tellScheduler(MessageLevel::Page,
                std::to_string(page).append(" ").append(std::to_string(copies)));
}

}  // namespace

Copies copiesOf(const cups_page_header2_t& firstHeader, bool orlo) noexcept {
  // The device records have 16 bits for each.
  const auto count = static_cast<int16_t>(firstHeader.NumCopies);
  const auto collate = static_cast<int16_t>(enumBits(firstHeader.Collate));
  if (orlo || count <= 1) return {};
  return {static_cast<uint32_t>(count), collate == 1};
}

std::string progressText(uint64_t page, const Copies& copies) {
  const std::string text = "Printing page " + std::to_string(page);
  return copies.count == 1 ? text : text + ", " + std::to_string(copies.count) + " copies";
}

std::string missingPagesText(uint64_t pages, uint64_t inCopy) {
  const bool one = pages == inCopy + 1;
  const std::string first = std::to_string(inCopy + 1);
  const std::string which =
      one ? "Page " + first + " is" : "Pages " + first + " to " + std::to_string(pages) + " are";
  return which + " not in the PDF copy of the job, which has " + std::to_string(inCopy) +
         (inCopy == 1 ? " page" : " pages") + ": " + (one ? "it stays" : "they stay") +
         " white; print the job with PdfPreprocess=no";
}

void JobWatch::jobBegins(const cups_page_header2_t& header) {
  copies_ = copiesOf(header, isOrloModel(ppd_));
  // What an earlier job has raised stays until then, so that it can be seen.
  tellScheduler(MessageLevel::State, std::string("-").append(allStateReasons()));
}

bool JobWatch::findCopy() {
  const FixedText name = formatText("%s%s.pdf", kJobFilePrefix.data(), jobId_);
  if (isPlainName(jobId_) && !name.cut && jobPdfAt(name.text()).state == PdfState::Ours) {
    copy_ = UniqueFd(open(name.text(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return true;
  }
  tellScheduler(MessageLevel::Error,
                std::string("There is no PDF copy of the job at ") + name.text() +
                    ", so that its pages would come out white: print it with PdfPreprocess=no, "
                    "or the document itself where it is CUPS raster");
  return false;
}

bool JobWatch::pageBegins(const cups_page_header2_t& header) noexcept try {
  const bool first = ++page_ == 1;
  if (first) jobBegins(header);
  Trouble trouble = headerTrouble(header, first, mostPageBytes(ppd_, header));
  if (trouble != Trouble::None) {
    tellScheduler(MessageLevel::Error, troubleText(trouble, header, page_));
    raise(trouble);
  }
  printed_ = isPrinted(trouble);
  if (first && printed_ && pagesComeFromPdf(ppd_) && !findCopy()) {
    raise(Trouble::Copy);
    printed_ = false;
  }
  if (first && !printed_) return false;
  if (!printed_) notPrinted_.push_back(page_);
  told_ = 0;
  if (printed_) tellScheduler(MessageLevel::Info, progressText(page_, copies_));
  return true;
} catch (const std::bad_alloc&) {
  tellLostSight();
  return true;
}

void JobWatch::pagePassed(int percent) noexcept try {
  constexpr int kStep = 10;
  const int tenths = percent / kStep * kStep;
  if (tenths <= told_ || !printed_) return;
  told_ = tenths;
  tellScheduler(MessageLevel::Attribute, "job-media-progress=" + std::to_string(tenths));
} catch (const std::bad_alloc&) {
  tellLostSight();
}

void JobWatch::pageEnds() noexcept try {
  if (!printed_) return;
  constexpr int kWhole = 100;
  pagePassed(kWhole);
  account(page_, copies_.collated ? 1 : copies_.count);
} catch (const std::bad_alloc&) {
  tellLostSight();
}

void JobWatch::pagesEnd() noexcept try {
  if (!copies_.collated) return;
  for (uint64_t page = 1; page <= page_; ++page)
    if (!std::ranges::binary_search(notPrinted_, page)) account(page, copies_.count - 1);
} catch (const std::bad_alloc&) {
  tellLostSight();
}

void JobWatch::checkCopyPages(const ToolWatch& watch) const noexcept try {
  if (!copy_) return;
  const FixedText name = formatText("/proc/%d/fd/%d", getpid(), copy_.get());
  const auto pages = countPages(name.text(), watch);
  if (!pages) {
    tellScheduler(MessageLevel::Debug, "The pages of the PDF copy cannot be counted");
    return;
  }
  const auto inCopy = static_cast<uint64_t>(*pages);
  if (page_ <= inCopy) return;
  tellScheduler(MessageLevel::Error, missingPagesText(page_, inCopy));
  raise(Trouble::Copy);
} catch (const std::bad_alloc&) {
  tellLostSight();
}

}  // namespace velka
