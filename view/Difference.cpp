#include "Difference.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velka::view {
namespace {

using decode::DotGrid;

constexpr std::array<uint8_t, 2> kInkCells{decode::kBlackCell, decode::kRedCell};

Change countChange(const DotGrid& first, const DotGrid& second) {
  Change change;
  for (size_t i = 0; i < first.cells.size(); ++i) {
    for (size_t ink = 0; ink < kInkCells.size(); ++ink) {
      const bool a = (first.cells[i] & kInkCells.at(ink)) != 0;
      const bool b = (second.cells[i] & kInkCells.at(ink)) != 0;
      change.at(ink).same += a && b ? 1 : 0;
      change.at(ink).first += a && !b ? 1 : 0;
      change.at(ink).second += b && !a ? 1 : 0;
    }
  }
  return change;
}

// What is only in one of the two stands out, the rest is pale.
uint32_t colourOf(unsigned first, unsigned second) {
  if ((first & ~second) != 0) return kOnlyFirst;
  if ((second & ~first) != 0) return kOnlySecond;
  if ((first & decode::kBlackCell) != 0) return kPaleBlack;
  return first != 0 ? kPaleRed : kWhite;
}

struct Grids {
  std::optional<DotGrid> first;
  std::optional<DotGrid> second;
};

Grids drawBoth(const PagePair& pages, const PaperView& view,
               const std::array<decode::Model, 2>& models, int64_t length, decode::Extent extent) {
  return {decode::drawCells(pages.first, models[0], view.grid, view.width, length, extent),
          decode::drawCells(pages.second, models[1], view.grid, view.width, length, extent)};
}

}  // namespace

void InkChange::add(const InkChange& other) {
  same += other.same;
  first += other.first;
  second += other.second;
}

Drawing comparePages(const PagePair& pages, const PaperView& view,
                     const std::array<decode::Model, 2>& models, Change& change) {
  const int64_t length = std::max(paperLength(pages.first, models[0], view.grid),
                                  paperLength(pages.second, models[1], view.grid));
  const auto cell = static_cast<double>(view.grid.cell());
  Drawing drawing = blankPicture(std::ceil(static_cast<double>(view.width) / cell),
                                 std::ceil(static_cast<double>(length) / cell), streamDpi(view));
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr) return drawing;
  const Grids dots = drawBoth(pages, view, models, length, decode::Extent::Origin);
  const Grids cells = drawBoth(pages, view, models, length, decode::Extent::Whole);
  if (!dots.first || !dots.second || !cells.first || !cells.second) {
    return "the page is too large to compare";
  }
  change = countChange(*dots.first, *dots.second);
  for (size_t i = 0; i < cells.first->cells.size(); ++i) {
    picture->pixels[i] = colourOf(cells.first->cells[i], cells.second->cells[i]);
  }
  const double dpi = view.dpi ? *view.dpi : picture->dpi * view.scale;
  return dpi == picture->dpi ? std::move(drawing) : resample(std::move(*picture), dpi);
}

}  // namespace velka::view
