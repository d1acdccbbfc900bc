// The views in pictures: the pages of a stream, variants of one on a sheet.
#include <cstdio>
#include <utility>
#include <vector>

#include "ContactSheet.h"
#include "Files.h"
#include "Gallery.h"
#include "PageRows.h"
#include "Report.h"
#include "Views.h"

namespace velka::view {
namespace {

struct Sheet {
  std::vector<uint8_t> pdf;
  std::vector<Labelled> variants;
  bool anyPage = false;  // whether one of them prints the page
  int status = kDone;
};

// One variant's page; white paper where it prints none.
Problem addVariant(const Arguments& arguments, const std::string& setting, Sheet& sheet) {
  Stream stream;
  const std::string options = arguments.options + " " + setting;
  if (auto problem = printStream(arguments, sheet.pdf, options, stream)) {
    return setting + ": " + *problem;
  }
  const uint64_t wanted = arguments.pages.value_or(PageRange{}).first;
  PaperView view = paperView(arguments, stream, survey(stream, {wanted, wanted}).grid);
  if (!view.dpi && !arguments.scale) view.dpi = 90;  // several fit a screen
  decode::PageReader reader(stream.bytes, stream.model);
  std::optional<decode::Page> page;
  for (uint64_t number = 1; number <= wanted; ++number) page = reader.next();
  sheet.anyPage = sheet.anyPage || page;
  Labelled result{page ? setting : setting + " (prints no such page)", {}};
  uint64_t outside = 0;
  Drawing drawing = drawPage(page.value_or(decode::Page{}), view, outside);
  if (const auto* why = std::get_if<std::string>(&drawing)) return setting + ": " + *why;
  result.picture = std::get<Picture>(std::move(drawing));
  sheet.variants.push_back(std::move(result));
  sheet.status = finish(stream, reader.fault(), sheet.status);
  return std::nullopt;
}

}  // namespace

int drawPages(const Arguments& arguments) {
  Stream stream;
  if (auto problem = onlyStream(arguments, stream)) return fail(*problem);
  const PageRange range = arguments.pages.value_or(PageRange{});
  const Survey found = survey(stream, range);
  uint64_t chosen = 0;
  if (auto problem = choosePages(arguments, found.pages, chosen)) {
    return fail(stream.name + ": " + *problem);
  }
  const PaperView view = paperView(arguments, stream, found.grid);
  Gallery gallery(arguments, stream.stem, chosen == 1);
  decode::PageReader reader(stream.bytes, stream.model);
  int status = kDone;
  uint64_t number = 0;
  while (const auto page = reader.next()) {
    if (!range.holds(++number)) continue;
    RowsDrawing drawing = pageRows(*page, view);
    if (const auto* why = std::get_if<std::string>(&drawing)) {
      status = fail(pageText(stream, number, *page) + *why);
      continue;
    }
    warnOfPage(stream, number, *page, dotsBesidePaper(*page, view));
    if (auto problem = gallery.add(*std::get<Rows>(drawing), number)) {
      return fail(*problem);
    }
  }
  if (auto problem = gallery.finish()) return fail(*problem);
  if (number == 0) status = fail(stream.name + ": no page, so nothing to draw");
  return finish(stream, reader.fault(), status);
}

int drawSheet(const Arguments& arguments) {
  Sheet sheet;
  if (auto problem = readFile(arguments.from, sheet.pdf)) return fail(*problem);
  for (const std::string& value : arguments.sheetValues) {
    const std::string setting = arguments.sheetOption + "=" + value;
    if (auto problem = addVariant(arguments, setting, sheet)) return fail(*problem);
  }
  if (!sheet.anyPage) return fail("no variant prints that page (one without ink may not be sent)");
  Drawing drawing = contactSheet(std::move(sheet.variants));
  if (const auto* why = std::get_if<std::string>(&drawing)) return fail(*why);
  Arguments named = arguments;
  const std::string stem = stemOf(arguments.from);
  const bool pdf = formatOf(arguments) == Format::Pdf;
  if (named.output.empty()) named.output = stem + "-sheet" + (pdf ? ".pdf" : ".png");
  Gallery gallery(named, stem, true);
  const Rows rows = rowsOf(std::get<Picture>(std::move(drawing)));
  if (auto problem = gallery.add(*rows, 1)) return fail(*problem);
  if (auto problem = gallery.finish()) return fail(*problem);
  return sheet.status;
}

}  // namespace velka::view
