#include "RasterLines.h"

#include <algorithm>
#include <cstring>

#include "CpuLevel.h"
#include "SwapPixels.h"

namespace velka {

namespace {

// Bytes of whole pixels at the start that are swapped many at a time.
size_t swapFirstPixels([[maybe_unused]] const uint8_t* line, [[maybe_unused]] uint8_t* row,
                       [[maybe_unused]] size_t bytes) noexcept {
#ifdef VELKA_SIMD
  if (cpuLevel() >= CpuLevel::Ssse3) return swapPixelsSsse3(line, row, bytes);
#endif
  return 0;
}

}  // namespace

void storeLine(std::span<const uint8_t> line, std::span<uint8_t> row, uint32_t pixels) noexcept {
  constexpr size_t kChannels = 3;
  const size_t bytes = std::min(line.size(), row.size());
  const size_t swapped = std::min<size_t>(pixels, bytes / kChannels) * kChannels;
  for (size_t i = swapFirstPixels(line.data(), row.data(), swapped); i < swapped; i += kChannels) {
    row[i] = line[i + 2];
    row[i + 1] = line[i + 1];
    row[i + 2] = line[i];
  }
  if (bytes > swapped) std::memcpy(row.data() + swapped, line.data() + swapped, bytes - swapped);
  if (row.size() > bytes) std::memset(row.data() + bytes, 0xFF, row.size() - bytes);
}

}  // namespace velka
