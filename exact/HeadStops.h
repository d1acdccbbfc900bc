// Where the paper must stand so that every row with ink is printed, once.
//
// The head prints a group of rows of each ink from one place. Going down the page, the
// next place is the highest one that brings a row not printed so far under the first dot
// of its ink; what its dots reach of either ink is printed there, and never again. No
// choice of places covers the rows of one ink with fewer stops.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>

#include "HeadLayout.h"
#include "InkRows.h"

namespace velka {

/// Rows of a page, `end` not among them.
struct RowRange {
  int64_t first = 0;
  int64_t end = 0;

  [[nodiscard]] bool contains(int64_t row) const noexcept { return row >= first && row < end; }
};

/// A place of the paper: the page's row under the head's first slot, and the rows that
/// each ink prints from there.
struct HeadStop {
  int64_t base = 0;
  RowRange black;
  RowRange red;
};

/// An ink of a sweep down the page: its dots in the head and its rows; without rows the
/// sweep leaves it out.
struct SweptInk {
  NozzleGroup nozzles;
  const InkRows* rows = nullptr;
};

class HeadStops {
 public:
  /// @param passes of the head from one stop, each a row lower
  /// @param lowest the paper goes no farther than this base, from which the head must
  ///        reach all rows below; a row out of its reach is printed all the same
  HeadStops(const SweptInk& black, const SweptInk& red, int passes,
            int64_t lowest = std::numeric_limits<int64_t>::max()) noexcept
      : ways_{Way{black, 0}, Way{red, 0}}, passes_(passes), lowest_(lowest) {}

  /// The next stop, below the last one; none when no ink is left.
  [[nodiscard]] std::optional<HeadStop> next() noexcept;

 private:
  // The bases that bring an ink's next row under its first and under its last dot.
  struct Want {
    int64_t base;
    int64_t highest;
  };
  struct Way {
    SweptInk ink;
    int64_t printedTo;  // rows above it are printed, or out of reach

    [[nodiscard]] std::optional<Want> wants(int passes) const noexcept;
    [[nodiscard]] RowRange print(int64_t base, int passes) noexcept;
  };

  std::array<Way, 2> ways_;
  int passes_;
  int64_t lowest_;
};

}  // namespace velka
