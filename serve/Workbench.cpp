#include "Workbench.h"

#include <algorithm>
#include <cmath>

#include "PageCheck.h"
#include "PageReader.h"
#include "Ppd.h"
#include "Report.h"

namespace velka::serve {
namespace {

// A page without ink is not sent: paper as long as its raster is then.
decode::Page whitePage(const RasterPixels& pixels) {
  constexpr double kLinesPerInch = 6;
  decode::Page page;
  page.lines = static_cast<int32_t>(
      std::lround(static_cast<double>(pixels.height) / pixels.alongDpi * kLinesPerInch));
  return page;
}

view::Problem decodeInto(PrintedPage& to, uint64_t number, const view::PpdFacts& facts,
                         const RasterPixels& pixels) {
  view::Arguments usual;
  to.stream.model = facts.model;
  to.stream.leastWidth = facts.paperWidth > 0 ? facts.paperWidth : view::usualWidth();
  const view::PageChoice choice{{number, number}, to.stream.pagesChosen ? number : 1};
  to.view = view::paperView(usual, to.stream, view::survey(to.stream, choice).grid);
  decode::PageReader reader(to.stream.bytes, to.stream.model);
  std::optional<decode::Page> page;
  for (uint64_t at = choice.first; at <= number; ++at) page = reader.next();
  to.blank = !page;
  if (page) to.flaws = decode::textOf(decode::checkPage(*page, to.stream.model));
  to.page = page ? std::move(*page) : whitePage(pixels);
  if (!page && reader.fault()) return view::faultText(to.stream, *reader.fault());
  return std::nullopt;
}

}  // namespace

std::variant<Workbench::Page, Failure> Workbench::print(const Wish& wish) {
  turns_.note(wish.tab, wish.turn);
  const std::scoped_lock lock(working_);
  if (turns_.isOutdated(wish.tab, wish.turn)) return Failure{true, "outdated"};
  const std::string text = options_.jobText(wish.settings);
  const std::string key = std::to_string(wish.page) + " " + text;
  const auto found =
      std::ranges::find(printed_, key, [](const auto& entry) { return entry.first; });
  if (found != printed_.end()) {
    printed_.splice(printed_.begin(), printed_, found);
    return printed_.front().second;
  }
  auto page = run(wish, text);
  if (const auto* printed = std::get_if<Page>(&page)) {
    printed_.emplace_front(key, *printed);
    if (printed_.size() > kMostPages) printed_.pop_back();
  }
  return page;
}

std::variant<Workbench::Raster, Failure> Workbench::raster(const Wish& wish) {
  const std::scoped_lock lock(working_);
  return rasterOf(wish);
}

// Made to its end even where the wish is outdated: the newer one needs the same, or takes
// longer anyway.
std::variant<Workbench::Raster, Failure> Workbench::rasterOf(const Wish& wish) {
  const auto ended = [this] { return turns_.isOutdated("", 0); };
  auto found = rasters_.get(wish.settings, wish.page, ended);
  if (const auto* refusal = std::get_if<Refusal>(&found)) return Failure{ended(), refusal->why};
  return std::get<Raster>(found);
}

std::variant<Workbench::Page, Failure> Workbench::run(const Wish& wish, const std::string& text) {
  const auto outdated = [&] { return turns_.isOutdated(wish.tab, wish.turn); };
  auto raster = rasterOf(wish);
  if (const auto* failure = std::get_if<Failure>(&raster)) return *failure;
  KeptRaster& kept = *std::get<Raster>(raster);
  view::Printed printed;
  if (auto problem = kept.chain().print(text, printed, outdated))
    return Failure{outdated(), *problem};
  auto page = std::make_shared<PrintedPage>();
  page->stream.name = document_.name;
  page->stream.bytes = std::move(printed.stream);
  page->stream.pagesChosen = printed.pagesChosen;
  view::PpdFacts facts;
  if (auto problem = view::readPpd(document_.ppd, text, facts)) return Failure{false, *problem};
  if (auto problem = decodeInto(*page, wish.page, facts, kept.pixels()))
    return Failure{false, *problem};
  return page;
}

}  // namespace velka::serve
