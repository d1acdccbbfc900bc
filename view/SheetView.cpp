// The view of one page printed in several ways.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "ContactSheet.h"
#include "Files.h"
#include "Gallery.h"
#include "OptionCheck.h"
#include "PageCells.h"
#include "PageCheck.h"
#include "PagePicture.h"
#include "Progress.h"
#include "Report.h"
#include "TextFormat.h"
#include "Views.h"

namespace velka::view {
namespace {

// What lies on the paper: the shares of it that black and red cover, and a number that
// two pages share only where every cell is the same.
struct Ink {
  double black = 0;
  double red = 0;
  uint64_t mark = 0;
};

uint64_t mixed(uint64_t mark, uint64_t value) {
  constexpr uint64_t kPrime = 1099511628211U;
  return (mark ^ value) * kPrime;
}

uint64_t markOf(const decode::PageCells& cells) {
  const int64_t rows =
      std::max<int64_t>(1, (int64_t{1} << 20) / std::max<int64_t>(1, cells.width()));
  std::vector<uint8_t> strip;
  uint64_t mark = mixed(mixed(14695981039346656037U, static_cast<uint64_t>(cells.width())),
                        static_cast<uint64_t>(cells.height()));
  for (int64_t top = 0; top < cells.height(); top += rows) {
    const int64_t count = std::min(rows, cells.height() - top);
    strip.resize(static_cast<size_t>(count * cells.width()));
    cells.draw(top, strip);
    for (const uint8_t cell : strip) mark = mixed(mark, cell);
  }
  return mark;
}

std::optional<Ink> inkOf(const decode::Page& page, const PaperView& view) {
  const decode::Paper paper = decode::paperOf(page, view.model, view.grid, view.width);
  const auto counts = decode::countCells(page, view.model, view.grid, paper);
  const auto all = static_cast<double>(decode::cellsIn(view.grid, paper));
  if (!counts || all == 0) return std::nullopt;
  return Ink{100 * static_cast<double>(counts->covered[0]) / all,
             100 * static_cast<double>(counts->covered[1]) / all,
             markOf(decode::PageCells(page, view.model, view.grid, paper))};
}

std::string inkText(const Ink& ink) {
  return decode::format("black %.2f %%, red %.2f %%", ink.black, ink.red);
}

std::string baseOf(const std::string& path) {
  return path == "-" ? "standard input" : std::filesystem::path(path).filename().string();
}

// One way to print the page.
struct Variant {
  std::string settings;  // as the job states them
  std::string label;     // which of them are the default, too
};

// Prints the variants one by one and puts them on the sheet.
class Sheet {
 public:
  explicit Sheet(const Arguments& arguments)
      : arguments_(arguments),
        page_(arguments.pages.value_or(PageRange{}).first),
        text_(arguments.output == "-" ? stderr : stdout) {}

  int run() {
    if (auto problem = readFile(arguments_.from, document_)) return fail(*problem);
    describe();
    const std::vector<Variant> variants = variantsOf();
    for (const Variant& variant : variants) {
      tellProgress(std::to_string(cells_.size() + 1) + " of " + std::to_string(variants.size()) +
                   ", " + variant.settings);
      if (auto problem = add(variant, variants.size())) return fail(*problem);
    }
    clearProgress();
    if (!anyPage_) return fail("no variant prints that page (one without ink may not be sent)");
    tellFlaws();
    return write();
  }

 private:
  void describe() {
    head_.lines.push_back(baseOf(arguments_.from) + ", page " + std::to_string(page_) + ", " +
                          baseOf(arguments_.ppd));
    head_.lines.push_back(arguments_.options.empty() ? "no other options"
                                                     : "options: " + arguments_.options);
    for (const SheetOption& option : arguments_.sheet) {
      defaults_.push_back(defaultOf(arguments_.ppd, option.name).value_or(""));
      if (defaults_.back().empty()) continue;
      head_.lines.push_back("default: " + option.name + "=" + defaults_.back());
    }
    if (arguments_.sheet.size() == 2) head_.columns = arguments_.sheet[0].values.size();
  }

  // The first option goes across, the second down.
  [[nodiscard]] std::vector<Variant> variantsOf() const {
    std::vector<Variant> variants = {{}};
    for (size_t i = arguments_.sheet.size(); i > 0; --i) {
      const SheetOption& option = arguments_.sheet[i - 1];
      std::vector<Variant> more;
      for (const Variant& down : variants) {
        for (const std::string& value : option.values) {
          const std::string setting = option.name + "=" + value;
          const bool usual = value == defaults_[i - 1];
          more.push_back({join(setting, down.settings),
                          join(usual ? setting + " (default)" : setting, down.label)});
        }
      }
      variants = std::move(more);
    }
    return variants;
  }

  static std::string join(const std::string& first, const std::string& second) {
    return second.empty() ? first : first + " " + second;
  }

  // White paper where it prints no such page.
  Problem add(const Variant& variant, size_t count) {
    Stream stream;
    const std::string options = arguments_.options + " " + variant.settings;
    if (auto problem =
            printStream(arguments_, document_, options, PageRange{page_, page_}, stream)) {
      return variant.settings + ": " + *problem;
    }
    const PageChoice choice{{page_, page_}, stream.pagesChosen ? page_ : 1};
    PaperView view = paperView(arguments_, stream, survey(stream, choice).grid);
    if (!view.dpi && !arguments_.scale) view.dpi = 90;  // several fit a screen
    decode::PageReader reader(stream.bytes, stream.model);
    std::optional<decode::Page> page;
    for (uint64_t number = choice.first; number <= page_; ++number) page = reader.next();
    Labelled cell{variant.label, {}, notesOf(variant, page, view)};
    uint64_t outside = 0;
    Drawing drawing = drawPage(page.value_or(decode::Page{}), view, outside);
    if (const auto* why = std::get_if<std::string>(&drawing)) return variant.settings + ": " + *why;
    cell.picture = std::get<Picture>(std::move(drawing));
    cells_.push_back(std::move(cell));
    status_ = finish(stream, reader.fault(), status_);
    return cells_.size() == 1 ? tooLargeASheet(cells_[0], count, head_) : std::nullopt;
  }

  std::vector<std::string> notesOf(const Variant& variant, const std::optional<decode::Page>& page,
                                   const PaperView& view) {
    if (!page) return {"prints no such page"};
    anyPage_ = true;
    noteFlaws(variant, *page, view.model);
    std::vector<std::string> notes;
    const auto ink = inkOf(*page, view);
    if (!ink) return notes;
    notes.push_back(inkText(*ink));
    const auto [same, isNew] = seen_.emplace(ink->mark, variant.settings);
    if (!isNew) notes.push_back("the same as " + same->second);
    return notes;
  }

  void noteFlaws(const Variant& variant, const decode::Page& page, decode::Model model) {
    const std::string text = decode::textOf(decode::checkPage(page, model));
    if (text.empty()) return;
    if (flawed_++ == 0) flaws_ = {variant.settings, text};
  }

  // One line for the sheet, however many of its pages it is about.
  void tellFlaws() const {
    if (flawed_ == 0) return;
    const std::string others =
        flawed_ == 1 ? "" : " and " + std::to_string(flawed_ - 1) + " more of the sheet";
    (void)fail(baseOf(arguments_.from) + ": page " + std::to_string(page_) + " with " +
               flaws_.first + others + ": " + flaws_.second);
  }

  int write() {
    std::string list;
    for (const Labelled& cell : cells_) {
      list += cell.label;
      for (size_t i = 0; i < cell.notes.size(); ++i) list += (i == 0 ? ": " : "; ") + cell.notes[i];
      list += "\n";
    }
    Drawing drawing = contactSheet(std::move(cells_), head_);
    if (const auto* why = std::get_if<std::string>(&drawing)) return fail(*why);
    Arguments named = arguments_;
    const std::string stem = stemOf(arguments_.from);
    const bool pdf = formatOf(arguments_) == Format::Pdf;
    if (named.output.empty()) named.output = stem + "-sheet" + (pdf ? ".pdf" : ".png");
    Gallery gallery(named, stem, true);
    const Rows rows = rowsOf(std::get<Picture>(std::move(drawing)));
    if (auto problem = gallery.add(*rows, 1)) return fail(*problem);
    if (auto problem = gallery.finish()) return fail(*problem);
    const std::string name = named.output == "-" ? "standard output" : named.output;
    (void)std::fprintf(text_, "%s: %s\n%s", name.c_str(), head_.lines.front().c_str(),
                       list.c_str());
    return flushed(status_);
  }

  const Arguments& arguments_;
  uint64_t page_;
  std::FILE* text_;
  std::vector<uint8_t> document_;
  std::vector<std::string> defaults_;  // of the sheet's options; empty: none
  SheetHead head_;
  std::vector<Labelled> cells_;
  std::map<uint64_t, std::string> seen_;       // marks, and the settings that printed them first
  std::pair<std::string, std::string> flaws_;  // the first that has some, and what
  size_t flawed_ = 0;
  bool anyPage_ = false;
  int status_ = kDone;
};

}  // namespace

int drawSheet(const Arguments& arguments) {
  return Sheet(arguments).run();
}

}  // namespace velka::view
