// How far bytes repeat.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velka {

/// The number of bytes equal to the first one, from 1 to `size`, which is not 0.
inline size_t runLength(const uint8_t* bytes, size_t size) noexcept {
  const uint64_t same = 0x0101010101010101U * bytes[0];
  size_t n = 1;
  for (uint64_t next = 0; size - n >= sizeof(next); n += sizeof(next)) {
    std::memcpy(&next, bytes + n, sizeof(next));
    if (next != same) {
      break;
    }
  }
  while (n < size && bytes[n] == bytes[0]) {
    ++n;
  }
  return n;
}

}  // namespace velka
