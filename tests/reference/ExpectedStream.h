// Expected command streams spelt out by hand: one short method a command, in the
// order in which the printer receives them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velka::reference {

class ExpectedStream {
 public:
  using Bytes = std::vector<uint8_t>;

  ExpectedStream& start(int lines) { return add({0x1B, '@', 0x1B, '2', 0x1B, 'C', low(lines)}); }
  ExpectedStream& end() { return add({0x1B, '@'}); }
  ExpectedStream& unit(int unit) { return add({0x1B, '(', 'U', 1, 0, low(unit)}); }
  /// CR and a vertical move in 1/360 inch.
  ExpectedStream& down(int units) {
    return add({0x0D, 0x1B, '(', 'v', 2, 0, low(units), high(units)});
  }
  /// Unit 1/60 inch and an absolute position in it.
  ExpectedStream& toX(int position) {
    return unit(60).add({0x1B, '$', low(position), high(position)});
  }
  ExpectedStream& block(int colour, int mode, int columns, const Bytes& data) {
    add({0x1B, 'r', low(colour), 0x1B, '*', low(mode), low(columns), high(columns)});
    return add(data);
  }
  ExpectedStream& eject(int p) { return add({0x1D, 4, 'T', low(p)}); }
  ExpectedStream& formFeed() { return add({0x0C}); }
  ExpectedStream& add(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  ExpectedStream& add(const ExpectedStream& other) { return add(other.bytes_); }

  [[nodiscard]] const Bytes& bytes() const { return bytes_; }

 private:
  static uint8_t low(int value) { return static_cast<uint8_t>(static_cast<unsigned>(value)); }
  static uint8_t high(int value) { return static_cast<uint8_t>(static_cast<unsigned>(value) >> 8); }

  Bytes bytes_;
};

/// `count` columns of `pattern`, one after another.
inline std::vector<uint8_t> columnsOf(size_t count, const std::vector<uint8_t>& pattern) {
  std::vector<uint8_t> data;
  for (size_t i = 0; i < count; ++i) {
    data.insert(data.end(), pattern.begin(), pattern.end());
  }
  return data;
}

}  // namespace velka::reference
