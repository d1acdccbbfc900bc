// What a fuzz target takes from its input, and how it ends the program where something
// is not as it must be.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace velka::fuzz {

using Bytes = std::vector<uint8_t>;

inline void require(bool holds) {
  if (!holds) std::abort();
}

/// The input from its start to its end; behind that it gives zeros.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : rest_(data, size) {}

  [[nodiscard]] bool isEmpty() const { return rest_.empty(); }

  template <typename Number>
  Number number() {
    Number value = {};
    const auto bytes = take(sizeof value);
    if (!bytes.empty()) std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  uint8_t byte() { return number<uint8_t>(); }
  bool flag() { return (byte() & 1U) != 0; }
  /// 0 .. limit - 1
  int below(int limit) {
    return static_cast<int>(number<uint16_t>() % static_cast<unsigned>(limit));
  }
  template <typename Item, size_t count>
  const Item& oneOf(const Item (&items)[count]) {
    return items[static_cast<size_t>(below(static_cast<int>(count)))];
  }

  /// As many bytes as there are, at most `most`.
  std::span<const uint8_t> take(size_t most) {
    const auto taken = rest_.first(std::min(most, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  std::string text(size_t most) {
    const auto bytes = take(most);
    return {bytes.begin(), bytes.end()};
  }
  /// A text of a length that the input says, below 64 KiB.
  std::string text() { return text(number<uint16_t>()); }
  std::string rest() { return text(rest_.size()); }

  /// `size` bytes in runs: each a value and, above 127 in a second byte, how often.
  Bytes runs(size_t size, uint8_t behind) {
    Bytes bytes;
    bytes.reserve(size);
    while (bytes.size() < size && !rest_.empty()) {
      const uint8_t value = byte();
      const uint8_t length = byte();
      const size_t count = length < 128 ? length + size_t{1} : size_t{4} * (length - 127U);
      bytes.insert(bytes.end(), std::min(count, size - bytes.size()), value);
    }
    bytes.resize(size, behind);
    return bytes;
  }
  /// The same with nothing but 0 (a dot, where a value is below 64) and 255.
  Bytes dots(size_t size) {
    Bytes bytes = runs(size, 255);
    for (uint8_t& value : bytes) value = value < 64 ? 0 : 255;
    return bytes;
  }

 private:
  std::span<const uint8_t> rest_;
};

}  // namespace velka::fuzz
