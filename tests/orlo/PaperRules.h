// What of a page's planes is to be found on paper: all of it but the rows that are
// dropped or displaced on purpose, rule by rule.
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "orlo/PageMaker.h"

namespace velka::orlotest {

/// Where a dot lies: down and across, in 1/3600 inch.
using Dot = std::pair<int64_t, int64_t>;
inline constexpr int64_t kUnitsPerInch = 3600;

/// The dots of a page that are to be found on paper.
struct Expected {
  std::set<Dot> black;
  std::set<Dot> red;
};

Expected expectedPaper(const DotPage& page, Feed feed, bool split, ModeRow mode);

/// Whether paper holds what it ought to; at 80 and 90 columns an inch dots may lie up
/// to 1/60 inch to the left.
bool samePaper(const std::set<Dot>& paper, const std::set<Dot>& expected, int horizontalDpi);

}  // namespace velka::orlotest
