// Reading page header fields that may hold anything.
#pragma once

#include <cstring>

namespace velka {

/// The bits of an enumerated header field as a number. The stream fills these
/// fields unchecked, and loading a value the enumeration does not have is
/// undefined.
template <typename Enum>
[[nodiscard]] int enumBits(const Enum& field) noexcept {
  static_assert(sizeof(Enum) == sizeof(int));
  int bits = 0;
  std::memcpy(&bits, &field, sizeof bits);
  return bits;
}

}  // namespace velka
