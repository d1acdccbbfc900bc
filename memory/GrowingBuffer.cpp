#include "GrowingBuffer.h"

#include <algorithm>
#include <cstring>

namespace velka {

MallocBytes zeroedBytes(size_t bytes) noexcept {
  return MallocBytes(static_cast<uint8_t*>(std::calloc(std::max<size_t>(bytes, 1), 1)));
}

bool growBuffer(unsigned char** buffer, unsigned int* size, unsigned int extra,
                uint8_t fill) noexcept {
  if (buffer == nullptr || size == nullptr) return false;
  const unsigned int old = *buffer == nullptr ? 0 : *size;
  unsigned int grown = 0;
  if (__builtin_add_overflow(*size, extra, &grown)) return false;
  // realloc moves large blocks by their page tables, so a long page costs no
  // quadratic copying although every append asks for its exact size.
  auto* block = static_cast<unsigned char*>(std::realloc(*buffer, std::max(grown, 1U)));
  if (block == nullptr) return false;
  std::memset(block + old, fill, grown - old);
  *buffer = block;
  *size = grown;
  return true;
}

bool appendAt(unsigned char** buffer, unsigned int* length, unsigned int* writePosition,
              std::span<const uint8_t> bytes) noexcept {
  if (buffer == nullptr || length == nullptr || writePosition == nullptr) return false;
  if (bytes.empty()) return true;
  const unsigned int at = std::min(*writePosition, *length);
  if (bytes.size() > UINT32_MAX ||
      !growBuffer(buffer, length, static_cast<unsigned int>(bytes.size()), 0))
    return false;
  std::memcpy(*buffer + at, bytes.data(), bytes.size());
  *writePosition = *length;
  return true;
}

}  // namespace velka
