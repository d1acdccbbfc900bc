#include "Turns.h"

#include <algorithm>

namespace velka::serve {

void Turns::note(const std::string& tab, uint64_t turn) {
  const std::scoped_lock lock(mutex_);
  if (newest_.size() >= kMostTabs && !newest_.contains(tab)) newest_.erase(newest_.begin());
  uint64_t& newest = newest_[tab];
  newest = std::max(newest, turn);
}

bool Turns::isOutdated(const std::string& tab, uint64_t turn) const {
  const std::scoped_lock lock(mutex_);
  if (ended_) return true;
  const auto found = newest_.find(tab);
  return found != newest_.end() && found->second > turn;
}

void Turns::end() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
}

}  // namespace velka::serve
