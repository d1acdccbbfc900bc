// The view of two streams.
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <numeric>
#include <utility>

#include "Difference.h"
#include "Gallery.h"
#include "Progress.h"
#include "Report.h"
#include "Tone.h"
#include "Views.h"

namespace velka::view {
namespace {

std::string inkText(const InkChange& change) {
  return std::to_string(change.same) + " the same, " + std::to_string(change.first) +
         " only in the first, " + std::to_string(change.second) + " only in the second";
}

void printChange(std::FILE* to, const std::string& what, const Change& change) {
  (void)std::fprintf(to, "%s: black dots: %s\n", what.c_str(), inkText(change.inks[0]).c_str());
  (void)std::fprintf(to, "%s: red dots: %s\n", what.c_str(), inkText(change.inks[1]).c_str());
  (void)std::fprintf(to, "%s: places in the other ink: %" PRIu64 "\n", what.c_str(),
                     change.otherInk);
}

// Both streams' pages side by side, the shorter one's followed by nothing.
class Comparison {
 public:
  Comparison(const Arguments& arguments, Stream& first, Stream& second)
      : arguments_(arguments),
        first_(first),
        second_(second),
        text_(arguments.output == "-" ? stderr : stdout) {}

  int run() {
    const PageRange wanted = arguments_.pages.value_or(PageRange{});
    const Survey one = survey(first_, {wanted});
    const Survey other = survey(second_, {wanted});
    uint64_t chosen = 0;
    const uint64_t pages = std::max(one.pages, other.pages);
    if (auto problem = choosePages(arguments_, false, pages, chosen)) {
      return fail((one.pages < other.pages ? second_ : first_).name + ": " + *problem);
    }
    view_ = paperView(arguments_, first_, {std::gcd(one.grid.step, other.grid.step)});
    const decode::PaperWidth width = paperWidth(arguments_, second_);
    view_.width.units = std::max(view_.width.units, width.units);
    (void)std::fprintf(text_, "pages: %" PRIu64 " in the first, %" PRIu64 " in the second\n",
                       one.pages, other.pages);
    Gallery gallery(arguments_, first_.stem + "-" + second_.stem + "-diff", chosen == 1);
    const int status = compareAll(gallery);
    // Of pages that are not all there a sum would mislead.
    if (status == kDone) printTotals();
    return status;
  }

 private:
  int compareAll(Gallery& gallery) {
    decode::PageReader firstReader(first_.bytes, first_.model);
    decode::PageReader secondReader(second_.bytes, second_.model);
    const PageRange range = arguments_.pages.value_or(PageRange{});
    int status = kDone;
    for (uint64_t number = 1;; ++number) {
      const auto one = firstReader.next();
      const auto other = secondReader.next();
      if (!one && !other) break;
      if (!range.holds(number)) continue;
      tellProgress("page " + std::to_string(number) + ": " + gallery.nameOf(number));
      const decode::Page none;
      const PagePair pages{one ? *one : none, other ? *other : none};
      const auto problem = comparePair(pages, number, gallery);
      if (problem) status = fail("page " + std::to_string(number) + ": " + *problem);
    }
    if (auto problem = gallery.finish()) status = fail(*problem);
    clearProgress();
    status = finish(first_, firstReader.fault(), status);
    return finish(second_, secondReader.fault(), status);
  }

  Problem comparePair(const PagePair& pages, uint64_t number, Gallery& gallery) {
    const std::string name = "page " + std::to_string(number);
    RowsDrawing drawing = arguments_.tone ? compareTones(pages, name) : compareDots(pages, name);
    if (const auto* why = std::get_if<std::string>(&drawing)) return *why;
    return gallery.add(*std::get<Rows>(drawing), number);
  }

  RowsDrawing compareDots(const PagePair& pages, const std::string& name) {
    RowsDrawing drawing = changeRows(pages, view_, models());
    if (std::holds_alternative<std::string>(drawing)) return drawing;
    const auto change = countChange(pages, view_, models());
    if (!change) return "the pages are too large to compare";
    clearProgress();
    printChange(text_, name, *change);
    total_.add(*change);
    return drawing;
  }

  RowsDrawing compareTones(const PagePair& pages, const std::string& name) {
    auto tones = tonesOf(pages, view_, models());
    if (!tones) return "the pages are too large to compare";
    const auto changes = changeOf(*tones);
    clearProgress();
    printTones(name, changes, true);
    for (size_t ink = 0; ink < changes.size(); ++ink) totalTone_.at(ink).add(changes.at(ink));
    constexpr double kUsualDpi = 90;
    const double own = arguments_.scale ? streamDpi(view_) * view_.scale : kUsualDpi;
    return toneRows(std::move(*tones), view_.dpi.value_or(own));
  }

  void printTones(const std::string& name, const std::array<ToneChange, 2>& changes, bool place) {
    constexpr std::array<const char*, 2> kInks{"black", "red"};
    for (size_t ink = 0; ink < changes.size(); ++ink) {
      (void)std::fprintf(text_, "%s: %s tone: %s\n", name.c_str(), kInks.at(ink),
                         textOf(changes.at(ink), place).c_str());
    }
  }

  void printTotals() {
    if (arguments_.tone) return printTones("all", totalTone_, false);
    printChange(text_, "all", total_);
  }

  [[nodiscard]] std::array<decode::Model, 2> models() const {
    return {first_.model, second_.model};
  }

  const Arguments& arguments_;
  Stream& first_;
  Stream& second_;
  std::FILE* text_;
  PaperView view_;
  Change total_;
  std::array<ToneChange, 2> totalTone_;
};

}  // namespace

int tellDifference(const Arguments& arguments) {
  Stream first;
  Stream second;
  if (auto problem = loadStream(arguments, 0, first)) return fail(*problem);
  if (auto problem = loadStream(arguments, 1, second)) return fail(*problem);
  return flushed(Comparison(arguments, first, second).run());
}

}  // namespace velka::view
