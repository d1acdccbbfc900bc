// The view of a stream's pages.
#include <utility>

#include "Gallery.h"
#include "PageRows.h"
#include "Progress.h"
#include "Report.h"
#include "Views.h"

namespace velka::view {
namespace {

// Pages without ink may not be sent, and which of the wanted ones those are nobody tells.
void tellMissing(const Stream& stream, const PageRange& range, uint64_t pages) {
  if (!stream.pagesChosen || pages == 0 || range.last == UINT64_MAX) return;
  const uint64_t wanted = range.last - range.first + 1;
  if (pages == wanted) return;
  (void)fail(stream.name + ": " + std::to_string(wanted - pages) + " of the " +
             std::to_string(wanted) +
             " pages are not sent, as they have no ink, or not there; the " +
             "others are numbered on from " + std::to_string(range.first));
}

}  // namespace

int drawPages(const Arguments& arguments) {
  Stream stream;
  if (auto problem = onlyStream(arguments, stream)) return fail(*problem);
  const PageChoice choice = choiceOf(arguments, stream);
  const Survey found = survey(stream, choice);
  uint64_t chosen = 0;
  if (auto problem = choosePages(arguments, stream.pagesChosen, found.pages, chosen)) {
    return fail(stream.name + ": " + *problem);
  }
  tellMissing(stream, choice.range, found.pages);
  const PaperView view = paperView(arguments, stream, found.grid);
  Gallery gallery(arguments, stream.stem, chosen == 1);
  decode::PageReader reader(stream.bytes, stream.model);
  int status = kDone;
  uint64_t next = choice.first;
  uint64_t done = 0;
  while (const auto page = reader.next()) {
    const uint64_t number = next++;
    if (!choice.range.holds(number)) continue;
    RowsDrawing drawing = pageRows(*page, view);
    if (const auto* why = std::get_if<std::string>(&drawing)) {
      status = fail(pageText(stream, number, *page) + *why);
      continue;
    }
    tellProgress(std::to_string(++done) + " of " + std::to_string(chosen) + ": " +
                 gallery.nameOf(number));
    warnOfPage(stream, number, *page, dotsBesidePaper(*page, view));
    if (auto problem = gallery.add(*std::get<Rows>(drawing), number)) return fail(*problem);
  }
  if (auto problem = gallery.finish()) return fail(*problem);
  if (next == choice.first) status = fail(stream.name + ": no page, so nothing to draw");
  clearProgress();
  return finish(stream, reader.fault(), status);
}

}  // namespace velka::view
