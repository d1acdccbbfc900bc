#include "PpmImage.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace velka {
namespace {

constexpr size_t kNone = std::numeric_limits<size_t>::max();

// The place of the first `wanted` at or behind `from`.
size_t find(std::span<const uint8_t> file, size_t from, uint8_t wanted) noexcept {
  if (from >= file.size()) return kNone;
  const auto rest = file.subspan(from);
  const auto at = std::find(rest.begin(), rest.end(), wanted);
  return at == rest.end() ? kNone : from + static_cast<size_t>(at - rest.begin());
}

bool isSpace(uint8_t c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(uint8_t c) noexcept {
  return c >= '0' && c <= '9';
}

// The decimal number at `from`, white space before it skipped; 0 where none is.
int32_t numberAt(std::span<const uint8_t> file, size_t from) noexcept {
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  while (from < file.size() && isSpace(file[from])) ++from;
  int64_t number = 0;
  for (; from < file.size() && isDigit(file[from]); ++from)
    number = std::min(number * 10 + (file[from] - '0'), kMost);
  return static_cast<int32_t>(number);
}

size_t behind(size_t at) noexcept {
  return at == kNone ? kNone : at + 1;
}

}  // namespace

PpmHeader readPpmHeader(std::span<const uint8_t> file) noexcept {
  const size_t magicEnd = find(file, 0, '\n');
  const size_t space = find(file, magicEnd, ' ');
  const size_t sizeEnd = find(file, behind(space), '\n');
  const size_t maxvalEnd = find(file, behind(sizeEnd), '\n');
  PpmHeader header;
  header.hasSize = space != kNone;
  if (header.hasSize) {
    header.width = numberAt(file, magicEnd);
    header.height = numberAt(file, space);
  }
  header.pixels = maxvalEnd == kNone ? 0 : maxvalEnd + 1;
  return header;
}

void storePpmRows(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                  std::span<uint8_t> page, uint64_t stride) noexcept {
  const uint64_t rowBytes = kPixelBytes * width;
  const uint64_t shown = std::min(rowBytes, stride);
  const uint64_t whole = pixels.size() - pixels.size() % kPixelBytes;
  for (uint32_t row = 0; row < height && (row + uint64_t{1}) * stride <= page.size(); ++row) {
    const uint64_t from = std::min(row * rowBytes, whole);
    const uint64_t held = std::min(shown, whole - from);
    uint8_t* const out = page.data() + row * stride;
    if (held > 0) std::memcpy(out, pixels.data() + from, held);
    if (shown > held) std::memset(out + held, 0xFF, shown - held);
  }
}

}  // namespace velka
