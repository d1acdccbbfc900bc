// A printer of this model, as far as its paper shows: all dots that the head strikes
// while the decoder reads a command stream, whatever pages they are on.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>

#include "orlo/PaperRules.h"

namespace velka::orlotest {

struct Paper {
  std::set<Dot> black;
  std::set<Dot> red;
  int64_t strikes = 0;  ///< dots struck, one struck twice counted twice
  int blocks = 0;
  int pages = 0;          ///< form feeds
  int64_t headRow = 0;    ///< where the head is left, in 1/3600 inch
  std::string complaint;  ///< what the stream has that no printer knows; empty: all fine
};

/// Prints a stream with the head layout of a feed.
Paper printStream(std::span<const uint8_t> stream, Feed feed);

}  // namespace velka::orlotest
