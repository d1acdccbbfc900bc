#include "Difference.h"

#include <algorithm>
#include <utility>

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
uint32_t colourOf(unsigned first, unsigned second) {
  if (inksDiffer(first, second)) return kOtherInk;
  if ((first & ~second) != 0) return kOnlyFirst;
  if ((second & ~first) != 0) return kOnlySecond;
  if ((first & decode::kBlackCell) != 0) return kPaleBlack;
  return first != 0 ? kPaleRed : kWhite;
}

// The sheet that holds both pages.
decode::Paper paperOfBoth(const PagePair& pages, const PaperView& view,
                          const std::array<decode::Model, 2>& models) {
  const auto first = decode::paperOf(pages.first, models[0], view.grid, view.width);
  const auto second = decode::paperOf(pages.second, models[1], view.grid, view.width);
  return {std::max(first.width, second.width), std::max(first.length, second.length)};
}

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

Drawing comparePages(const PagePair& pages, const PaperView& view,
                     const std::array<decode::Model, 2>& models, Change& change) {
  const decode::Paper paper = paperOfBoth(pages, view, models);
  Drawing drawing = blankPaper(view, paper);
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr) return drawing;
  const auto first = decode::drawCells(pages.first, models[0], view.grid, paper);
  const auto second = decode::drawCells(pages.second, models[1], view.grid, paper);
  if (!first || !second) return "the page is too large to compare";
  change = {};
  for (size_t i = 0; i < first->cells.size(); ++i) {
    const unsigned a = first->cells[i];
    const unsigned b = second->cells[i];
    countPlace(a, b, change);
    picture->pixels[i] = colourOf(a & kAnyInk, b & kAnyInk);
  }
  const double dpi = view.dpi ? *view.dpi : picture->dpi * view.scale;
  return dpi == picture->dpi ? std::move(drawing) : resample(std::move(*picture), dpi);
}

}  // namespace velka::view
