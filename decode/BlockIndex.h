// The blocks of a page by where they lie along the paper.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "PageReader.h"

namespace velka::decode {

/// Finds blocks without looking at all of them; the page must outlive it.
class BlockIndex {
 public:
  BlockIndex(const Page& page, Model model);

  /// Calls `visit(block)` for each block with a pin in [top, bottom) units, highest
  /// first and otherwise as they were struck.
  template <typename Visit>
  void forEachTouching(int64_t top, int64_t bottom, Visit visit) const {
    for (auto entry = firstReaching(top); entry != entries_.end() && entry->top < bottom; ++entry) {
      if (entry->lowest >= top) visit(*entry->block);
    }
  }

  /// Whether there is no such block.
  [[nodiscard]] bool noneTouches(int64_t top, int64_t bottom) const;

 private:
  struct Entry {
    int64_t top;     // of the first pin, units
    int64_t lowest;  // of the last
    const Block* block;
  };

  [[nodiscard]] std::vector<Entry>::const_iterator firstReaching(int64_t y) const;

  std::vector<Entry> entries_;
  int64_t tallest_ = 0;
};

}  // namespace velka::decode
