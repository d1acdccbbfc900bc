// What a piece of code writes to a descriptor.
#pragma once

#include <cstdint>
#include <vector>

namespace velka::testing {

using Bytes = std::vector<uint8_t>;

/// Collects everything written to a descriptor while it lives.
class Capture {
 public:
  explicit Capture(int fd);
  ~Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  /// What has been written so far.
  [[nodiscard]] Bytes bytes() const;

 private:
  int fd_;
  int saved_;
  int file_;
};

/// The whole contents of an open file, from its start.
Bytes contentsOf(int fd);

}  // namespace velka::testing
