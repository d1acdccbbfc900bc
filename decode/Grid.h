// The grid that the dots of some pages lie on.
#pragma once

#include <cstdint>

#include "PageReader.h"

namespace velka::decode {

/// The distance that all dots of some pages lie on.
struct Grid {
  int64_t step = 0;  ///< units, the same across and down; 0: no dot so far

  /// Takes a page in.
  void add(const Page& page);

  /// The finest step is 1/720 inch; what does not lie on it is rounded down to
  /// 1/360 inch. Without any dot 1/180 inch.
  [[nodiscard]] int64_t cell() const;
};

/// How many cells high a page's dots are: as the rows lie apart that it strikes or
/// moves to, whatever the rows of other pages on the same grid do.
[[nodiscard]] int64_t dotHeight(const Page& page, const Grid& grid);

/// How many cells wide a block's dots are: as its columns lie apart.
[[nodiscard]] int64_t dotWidth(const Block& block, const Grid& grid);

/// The cells that a length in units takes, a part of one counted whole; none below 0.
[[nodiscard]] int64_t cellsIn(const Grid& grid, int64_t units);

}  // namespace velka::decode
