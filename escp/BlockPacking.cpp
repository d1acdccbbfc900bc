#include "BlockPacking.h"

#include <algorithm>

namespace velka {
namespace {

constexpr int64_t kInterleavedHeight = 48;
constexpr int kInterleavedDots = 24;

bool isBlank(std::span<const uint8_t> column) noexcept {
  return std::ranges::all_of(column, [](uint8_t byte) { return byte == 0; });
}

}  // namespace

PassRows passRows(const _RECTL& area, uint16_t bytesPerColumn, int pass) noexcept {
  const int64_t height = int64_t{area.bottom} - area.top + 1;
  const int64_t first = int64_t{area.top} + (pass != 0 ? 1 : 0);
  const int dots = 8 * bytesPerColumn;
  if (height == kInterleavedHeight) return {first, 2, std::min(dots, kInterleavedDots)};
  return {first, 1, dots};
}

uint32_t columnCount(const _RECTL& area) noexcept {
  return static_cast<uint32_t>(std::max<int64_t>(0, int64_t{area.right} - area.left + 1));
}

ColumnRange completeColumns(const InkPlane& plane, const _RECTL& area,
                            const PassRows& rows) noexcept {
  // A mode without data bytes reads no dot, so no column can be incomplete.
  if (rows.count == 0) return {area.left, area.left + int64_t{columnCount(area)}};
  const int64_t last = rows.first + int64_t{rows.step} * (rows.count - 1);
  if (plane.stride <= 0 || rows.first < 0 || last >= plane.height) return {area.left, area.left};
  const int64_t firstColumn = std::max(int64_t{area.left}, -rows.first * plane.stride);
  const auto size = static_cast<int64_t>(plane.bytes.size());
  const int64_t end = std::min(int64_t{area.right} + 1, size - last * plane.stride);
  return {firstColumn, std::max(firstColumn, end)};
}

void packColumns(const InkPlane& plane, const ColumnRange& range, const PassRows& rows,
                 uint16_t bytesPerColumn, std::span<uint8_t> columns) noexcept {
  const auto count = static_cast<size_t>(range.end - range.first);
  if (count == 0 || columns.size() < count * bytesPerColumn) return;
  for (int dot = 0; dot < rows.count; ++dot) {
    const int64_t row = rows.first + int64_t{rows.step} * dot;
    const uint8_t* source = plane.bytes.data() + row * plane.stride + range.first;
    uint8_t* target = columns.data() + dot / 8;
    const auto bit = static_cast<uint8_t>(0x80U >> (static_cast<unsigned>(dot) % 8));
    for (size_t x = 0; x < count; ++x) {
      uint8_t& byte = target[x * bytesPerColumn];
      byte = static_cast<uint8_t>(byte | (source[x] == 0 ? bit : 0));
    }
  }
}

BlockExtent trimBlock(std::span<const uint8_t> columns, uint32_t stored, uint32_t areaColumns,
                      uint16_t bytesPerColumn, uint64_t horizontalStep) noexcept {
  uint64_t leading = 0;
  uint64_t trailing = 0;
  bool hasData = false;
  for (uint32_t i = 0; i < stored; ++i) {
    const uint64_t storedBytes = uint64_t{i} * bytesPerColumn;
    if (!isBlank(columns.subspan(storedBytes, bytesPerColumn))) {
      hasData = true;
      trailing = 0;
    } else if (!hasData && storedBytes == leading) {
      // Deliberate: bytes are compared with columns, so with more than one byte
      // a column only the first blank column counts as leading.
      leading = storedBytes + 1;
    } else {
      ++trailing;
    }
  }
  const uint64_t skip = leading - leading % std::max<uint64_t>(1, horizontalStep);
  if (!hasData) return {false, static_cast<uint32_t>(skip), 0};
  // Deliberate: every block is one column short.
  const uint64_t sent = uint64_t{areaColumns} - 1 - trailing - skip;
  return {true, static_cast<uint32_t>(skip), static_cast<uint32_t>(sent)};
}

}  // namespace velka
