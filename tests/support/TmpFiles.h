// What stands below /tmp before a job and after it.
#pragma once

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

namespace velka::testing {

class TmpFiles {
 public:
  /// Names that are there now and were not when the object was made, in order.
  [[nodiscard]] std::vector<std::string> left() const {
    const std::vector<std::string> now = names();
    std::vector<std::string> more;
    std::set_difference(now.begin(), now.end(), before_.begin(), before_.end(),
                        std::back_inserter(more));
    return more;
  }
  /// Removes them.
  void clear() const {
    for (const std::string& name : left()) std::filesystem::remove_all("/tmp/" + name);
  }

 private:
  // But for a file that the thread sanitizer has for a moment at a program's start.
  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
      const std::string name = entry.path().filename();
      if (!name.starts_with("tsan.rodata.")) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::vector<std::string> before_ = names();
};

}  // namespace velka::testing
