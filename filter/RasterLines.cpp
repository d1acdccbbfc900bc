#include "RasterLines.h"

#include <algorithm>
#include <cstring>

namespace velka {

void storeLine(std::span<const uint8_t> line, std::span<uint8_t> row, uint32_t pixels) noexcept {
  constexpr size_t kPixelBytes = 3;
  const size_t bytes = std::min(line.size(), row.size());
  const size_t swapped = std::min<size_t>(pixels, bytes / kPixelBytes) * kPixelBytes;
  for (size_t i = 0; i < swapped; i += kPixelBytes) {
    row[i] = line[i + 2];
    row[i + 1] = line[i + 1];
    row[i + 2] = line[i];
  }
  std::copy(line.begin() + swapped, line.begin() + bytes, row.begin() + swapped);
  std::fill(row.begin() + bytes, row.end(), uint8_t{0xFF});
}

}  // namespace velka
