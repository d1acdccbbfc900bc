// A printer of this model, as far as its paper shows: it takes a command stream and
// marks the dots that its head would strike. It knows the head's layout, the modes,
// the units of moves and that a form feed takes the next sheet.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "orlo/PageMaker.h"

namespace velka::orlotest {

/// Where a dot lies: down and across, in 1/3600 inch.
using Dot = std::pair<int64_t, int64_t>;
inline constexpr int64_t kUnitsPerInch = 3600;

struct Paper {
  std::set<Dot> black;    ///< of the last sheet that has dots
  std::set<Dot> red;      ///< the same
  int64_t blackDots = 0;  ///< of all sheets, a dot struck twice counted once
  int64_t redDots = 0;
  int64_t strikes = 0;  ///< dots struck, one struck twice counted twice
  int blocks = 0;
  int pages = 0;          ///< form feeds
  int64_t headRow = 0;    ///< where the head is left, in 1/3600 inch
  std::string complaint;  ///< what the stream has that no printer knows; empty: all fine
};

/// Prints a stream with the head layout of a feed.
Paper printStream(std::span<const uint8_t> stream, Feed feed);

}  // namespace velka::orlotest
