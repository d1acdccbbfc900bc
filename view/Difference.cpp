#include "Difference.h"

#include <algorithm>
#include <utility>

#include "PageCells.h"
#include "PageRows.h"

namespace velka::view {
namespace {

constexpr std::array<uint8_t, 2> kDots{decode::kBlackDot, decode::kRedDot};
constexpr unsigned kAnyInk = decode::kBlackCell | decode::kRedCell;
constexpr unsigned kAnyDot = decode::kBlackDot | decode::kRedDot;

// Whether each stream has an ink that the other has not.
bool inksDiffer(unsigned first, unsigned second) {
  return (first & ~second) != 0 && (second & ~first) != 0;
}

void countPlace(unsigned first, unsigned second, Change& change) {
  if ((first | second) == 0) return;
  for (size_t ink = 0; ink < kDots.size(); ++ink) {
    const bool a = (first & kDots.at(ink)) != 0;
    const bool b = (second & kDots.at(ink)) != 0;
    change.inks.at(ink).same += a && b ? 1 : 0;
    change.inks.at(ink).first += a && !b ? 1 : 0;
    change.inks.at(ink).second += b && !a ? 1 : 0;
  }
  change.otherInk += inksDiffer(first & kAnyDot, second & kAnyDot) ? 1 : 0;
}

// What is only in one of the two stands out, the rest is pale.
enum Number : uint8_t { kSame, kBothBlack, kBothRed, kFirst, kSecond, kChangedInk };

std::vector<uint32_t> coloursOfChange() {
  return {kWhite, kPaleBlack, kPaleRed, kOnlyFirst, kOnlySecond, kOtherInk};
}

Number numberOf(unsigned first, unsigned second) {
  if (inksDiffer(first, second)) return kChangedInk;
  if ((first & ~second) != 0) return kFirst;
  if ((second & ~first) != 0) return kSecond;
  if ((first & decode::kBlackCell) != 0) return kBothBlack;
  return first != 0 ? kBothRed : kSame;
}

// The cells of both pages on one sheet.
class CellPair {
 public:
  CellPair(const PagePair& pages, const PaperView& view, const std::array<decode::Model, 2>& models)
      : CellPair(pages, view, models, paperOfBoth(pages, view, models)) {}

  [[nodiscard]] int64_t width() const { return first_.width(); }
  [[nodiscard]] int64_t height() const { return first_.height(); }
  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const {
    return first_.isBlank(top, rows) && second_.isBlank(top, rows);
  }

  // Calls `visit(i, first, second)` for the cells of these rows.
  template <typename Visit>
  void forEach(int64_t top, int64_t rows, Visit visit) {
    const auto cells = static_cast<size_t>(rows * width());
    a_.resize(cells);
    b_.resize(cells);
    first_.draw(top, a_);
    second_.draw(top, b_);
    for (size_t i = 0; i < cells; ++i) visit(i, unsigned{a_[i]}, unsigned{b_[i]});
  }

 private:
  CellPair(const PagePair& pages, const PaperView& view, const std::array<decode::Model, 2>& models,
           const decode::Paper& paper)
      : first_(pages.first, models[0], view.grid, paper),
        second_(pages.second, models[1], view.grid, paper) {}

  decode::PageCells first_;
  decode::PageCells second_;
  std::vector<uint8_t> a_;
  std::vector<uint8_t> b_;
};

class ChangeRows : public PictureRows {
 public:
  ChangeRows(const PictureSize& size, CellPair cells)
      : PictureRows(size, coloursOfChange()), cells_(std::move(cells)) {}

  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const override {
    return cells_.isBlank(top, rows);
  }

  void drawNumbers(int64_t top, std::span<uint8_t> numbers) override {
    if (cells_.width() == 0 || cells_.height() == 0) return PictureRows::drawNumbers(top, numbers);
    const auto rows = static_cast<int64_t>(numbers.size() / width());
    cells_.forEach(top, rows, [&](size_t i, unsigned first, unsigned second) {
      numbers[i] = numberOf(first & kAnyInk, second & kAnyInk);
    });
  }

 private:
  CellPair cells_;
};

}  // namespace

void InkChange::add(const InkChange& other) {
  same += other.same;
  first += other.first;
  second += other.second;
}

void Change::add(const Change& other) {
  for (size_t ink = 0; ink < inks.size(); ++ink) inks.at(ink).add(other.inks.at(ink));
  otherInk += other.otherInk;
}

decode::Paper paperOfBoth(const PagePair& pages, const PaperView& view,
                          const std::array<decode::Model, 2>& models) {
  const auto first = decode::paperOf(pages.first, models[0], view.grid, view.width);
  const auto second = decode::paperOf(pages.second, models[1], view.grid, view.width);
  return {std::max(first.width, second.width), std::max(first.length, second.length)};
}

std::optional<Change> countChange(const PagePair& pages, const PaperView& view,
                                  const std::array<decode::Model, 2>& models) {
  CellPair cells(pages, view, models);
  const int64_t width = std::max<int64_t>(1, cells.width());
  if (cells.height() > decode::kMostCountedCells / width) return std::nullopt;
  Change change;
  for (int64_t top = 0; top < cells.height(); top += rowsInStrip(width)) {
    const int64_t rows = std::min(rowsInStrip(width), cells.height() - top);
    if (cells.isBlank(top, rows)) continue;
    cells.forEach(top, rows, [&](size_t, unsigned a, unsigned b) { countPlace(a, b, change); });
  }
  return change;
}

RowsDrawing changeRows(const PagePair& pages, const PaperView& view,
                       const std::array<decode::Model, 2>& models) {
  const auto size = sheetSize(view, paperOfBoth(pages, view, models));
  if (!size) return kBeyondDrawing;
  return inWantedSize(std::make_unique<ChangeRows>(*size, CellPair(pages, view, models)), view);
}

Drawing comparePages(const PagePair& pages, const PaperView& view,
                     const std::array<decode::Model, 2>& models, Change& change) {
  const auto counted = countChange(pages, view, models);
  if (!counted) return "the pages are too large to compare";
  change = *counted;
  RowsDrawing drawing = changeRows(pages, view, models);
  if (auto* why = std::get_if<std::string>(&drawing)) return std::move(*why);
  return wholePicture(*std::get<Rows>(drawing));
}

}  // namespace velka::view
