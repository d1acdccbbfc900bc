#include "PageLayout.h"

#include <algorithm>
#include <cmath>

namespace velka::app {
namespace {

constexpr double kSame = 0.005;

// Quarters, anticlockwise.
int quarters(Turn turn, Extent page, Extent paper) noexcept {
  switch (turn) {
    case Turn::Portrait:
      return 0;
    case Turn::Landscape:
      return 1;
    case Turn::ReversePortrait:
      return 2;
    case Turn::ReverseLandscape:
      return 3;
    case Turn::None:
      break;
  }
  const bool across = page.width > page.height * (1 + kSame);
  const bool along = page.height > page.width * (1 + kSame);
  const bool turned = paper.width > paper.height ? along : across;
  return turned && paper.width != paper.height ? 1 : 0;
}

double scaleOf(Extent page, Extent paper, const Wishes& wishes) noexcept {
  const double x = paper.width / page.width;
  const double y = paper.height / page.height;
  const double fit = std::min(x, y);
  const double fill = std::max(x, y);
  const bool larger = fit < 1 - kSame;
  double scale = 1;
  if (wishes.scaling == Scaling::Fit) scale = fit;
  if (wishes.scaling == Scaling::Fill) scale = fill;
  if (wishes.scaling == Scaling::AutoFit && larger) scale = fit;
  if (wishes.scaling == Scaling::Auto && (larger || wishes.fidelity)) scale = fill;
  return std::abs(scale - 1) < kSame ? 1 : scale;
}

}  // namespace

Placing placePage(Extent page, Extent paper, const Wishes& wishes) noexcept {
  if (page.width <= 0 || page.height <= 0 || paper.width <= 0 || paper.height <= 0) return {};
  const int turn = quarters(wishes.turn, page, paper);
  const Extent turned = turn % 2 == 0 ? page : Extent{page.height, page.width};
  const double s = scaleOf(turned, paper, wishes);
  const double left = (paper.width - turned.width * s) / 2;
  const double top = (paper.height - turned.height * s) / 2;
  switch (turn) {
    case 1:
      return {0, -s, s, 0, left, top + turned.height * s};
    case 2:
      return {-s, 0, 0, -s, left + turned.width * s, top + turned.height * s};
    case 3:
      return {0, s, -s, 0, left + turned.width * s, top};
    default:
      return {s, 0, 0, s, left, top};
  }
}

Placing scaled(const Placing& p, double x, double y) noexcept {
  return {p.xx * x, p.yx * y, p.xy * x, p.yy * y, p.x0 * x, p.y0 * y};
}

std::vector<int> chosenPages(const std::vector<PageRange>& ranges, int count) {
  std::vector<int> pages;
  for (int page = 1; page <= count; ++page) {
    const bool wanted = std::ranges::any_of(
        ranges, [&](const PageRange& r) { return page >= r.first && page <= r.last; });
    if (wanted || ranges.empty()) pages.push_back(page);
  }
  return pages;
}

}  // namespace velka::app
