// Where the dots of a standard-model page must come to lie, from its halftoned planes
// and from what the printer's rules drop and displace on purpose. Knows bands, the
// head's rows and the ways of the paper; nothing of commands or bytes.
#pragma once

#include "decode/Dots.h"
#include "reference/ReferenceSeparation.h"

namespace velka::decodetest {

struct PrintedAt {
  int xdpi;
  int ydpi;
  bool split;
};

/// `planes` as the page's first and only one of a job, upright, without an initial
/// vertical offset.
Dots expectedPaper(const reference::Separation& planes, const PrintedAt& at);

}  // namespace velka::decodetest
