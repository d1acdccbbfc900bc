// The four encoders once more, slow and step by step: a band a call, rows searched
// one by one. What the product makes must be these bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "orlo/PageMaker.h"

namespace velka::orlotest {

struct LiteralResult {
  Bytes commands;
  std::vector<int64_t> bases;  ///< of all bands, in the order printed
  bool endedAtBottom = false;  ///< the sweep ended because the head passed the page
};

LiteralResult encodeLiterally(const DotPage& page, Feed feed, bool split, ModeRow mode);

}  // namespace velka::orlotest
