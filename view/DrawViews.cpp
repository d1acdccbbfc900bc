// The views in pictures: the pages of a stream, variants of one on a sheet.
#include <cstdio>
#include <filesystem>
#include <utility>
#include <vector>

#include "ContactSheet.h"
#include "Gallery.h"
#include "Report.h"
#include "Views.h"

namespace velka::view {
namespace {

std::string pageText(const Stream& stream, uint64_t number, const decode::Page& page) {
  return stream.name + ": page " + std::to_string(number) + " (offset " +
         std::to_string(page.offset) + "): ";
}

void warnOutside(const Stream& stream, uint64_t number, const decode::Page& page,
                 uint64_t outside) {
  if (outside == 0) return;
  (void)fail(pageText(stream, number, page) + std::to_string(outside) + " dots miss the paper");
}

// One variant's page; white paper where it prints none.
Problem drawVariant(const Arguments& arguments, const std::string& setting, Labelled& result,
                    int& status) {
  Stream stream;
  const std::string options = arguments.options + " " + setting;
  if (auto problem = printStream(arguments, options, stream)) return setting + ": " + *problem;
  const uint64_t wanted = arguments.pages.value_or(PageRange{}).first;
  PaperView view = paperView(arguments, stream, survey(stream, {wanted, wanted}).grid);
  if (!view.dpi && !arguments.scale) view.dpi = 90;  // several fit a screen
  decode::PageReader reader(stream.bytes, stream.model);
  std::optional<decode::Page> page;
  for (uint64_t number = 1; number <= wanted; ++number) page = reader.next();
  result.label = page ? setting : setting + " (prints no such page)";
  uint64_t outside = 0;
  Drawing drawing = drawPage(page.value_or(decode::Page{}), view, outside);
  if (const auto* why = std::get_if<std::string>(&drawing)) return setting + ": " + *why;
  result.picture = std::get<Picture>(std::move(drawing));
  status = finish(stream, reader.fault(), status);
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
    uint64_t outside = 0;
    Drawing drawing = drawPage(*page, view, outside);
    if (const auto* why = std::get_if<std::string>(&drawing)) {
      status = fail(pageText(stream, number, *page) + *why);
      continue;
    }
    warnOutside(stream, number, *page, outside);
    if (auto problem = gallery.add(std::get<Picture>(std::move(drawing)), number)) {
      return fail(*problem);
    }
  }
  if (auto problem = gallery.finish()) return fail(*problem);
  if (number == 0) (void)fail(stream.name + ": no page, so nothing to draw");
  return finish(stream, reader.fault(), status);
}

int drawSheet(const Arguments& arguments) {
  std::vector<Labelled> variants;
  int status = kDone;
  for (const std::string& value : arguments.sheetValues) {
    Labelled variant;
    const std::string setting = arguments.sheetOption + "=" + value;
    if (auto problem = drawVariant(arguments, setting, variant, status)) return fail(*problem);
    variants.push_back(std::move(variant));
  }
  Drawing drawing = contactSheet(std::move(variants));
  if (const auto* why = std::get_if<std::string>(&drawing)) return fail(*why);
  Arguments named = arguments;
  const std::string stem = std::filesystem::path(arguments.from).stem();
  const bool pdf = formatOf(arguments) == Format::Pdf;
  if (named.output.empty()) named.output = stem + "-sheet" + (pdf ? ".pdf" : ".png");
  Gallery gallery(named, stem, true);
  if (auto problem = gallery.add(std::get<Picture>(std::move(drawing)), 1)) return fail(*problem);
  if (auto problem = gallery.finish()) return fail(*problem);
  return status;
}

}  // namespace velka::view
