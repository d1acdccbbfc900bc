#include "HeadStops.h"

namespace velka {

std::optional<HeadStops::Want> HeadStops::Way::wants(int passes) const noexcept {
  const auto row = ink.rows == nullptr ? std::nullopt : ink.rows->firstFrom(printedTo);
  if (!row) return std::nullopt;
  return Want{*row - ink.nozzles.offset(passes), *row + 1 - ink.nozzles.beyond(passes)};
}

RowRange HeadStops::Way::print(int64_t base, int passes) noexcept {
  if (ink.rows == nullptr) return {};
  const int64_t end = base + ink.nozzles.beyond(passes);
  const RowRange rows = {std::max(printedTo, base + ink.nozzles.offset(passes)), end};
  printedTo = std::max(printedTo, end);
  return rows;
}

std::optional<HeadStop> HeadStops::next() noexcept {
  const auto black = ways_[0].wants(passes_);
  const auto red = ways_[1].wants(passes_);
  if (!black && !red) return std::nullopt;
  const bool redFirst = !black || (red && red->base < black->base);
  const Want want = redFirst ? *red : *black;
  const int64_t wanted = std::max(std::min(want.base, lowest_), want.highest);
  // The paper starts with the page's first row under the head's first slot.
  const int64_t base = std::max<int64_t>(wanted, 0);
  return HeadStop{base, ways_[0].print(base, passes_), ways_[1].print(base, passes_)};
}

}  // namespace velka
