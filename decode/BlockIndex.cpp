#include "BlockIndex.h"

#include "BlockSpan.h"

namespace velka::decode {

BlockIndex::BlockIndex(const Page& page, Model model) {
  for (const Block& block : page.blocks) {
    const int64_t lowest = lowestPinY(block, model);
    entries_.push_back({block.y, lowest, &block});
    tallest_ = std::max(tallest_, lowest - block.y);
  }
  std::ranges::stable_sort(entries_, {}, &Entry::top);
}

std::vector<BlockIndex::Entry>::const_iterator BlockIndex::firstReaching(int64_t y) const {
  return std::ranges::lower_bound(entries_, y - tallest_, {}, &Entry::top);
}

bool BlockIndex::noneTouches(int64_t top, int64_t bottom) const {
  for (auto entry = firstReaching(top); entry != entries_.end() && entry->top < bottom; ++entry) {
    if (entry->lowest >= top) return false;
  }
  return true;
}

}  // namespace velka::decode
