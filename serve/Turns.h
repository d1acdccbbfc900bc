// Whose wish is the newest: a tab that moves a slider wants nothing of its older places.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace velka::serve {

/// Counts the wishes of each tab; may be used from several threads.
class Turns {
 public:
  /// Notes a tab's wish. Wishes may come out of their order.
  void note(const std::string& tab, uint64_t turn);
  /// Whether the tab has had a newer one since.
  [[nodiscard]] bool isOutdated(const std::string& tab, uint64_t turn) const;

  /// From now on nobody wants anything.
  void end();

 private:
  static constexpr size_t kMostTabs = 256;

  mutable std::mutex mutex_;
  std::map<std::string, uint64_t> newest_;
  bool ended_ = false;
};

}  // namespace velka::serve
