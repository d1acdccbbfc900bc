#include "BlockPacking.h"

#include <algorithm>
#include <array>

#include "ByteRuns.h"

namespace velka {
namespace {

constexpr int64_t kInterleavedHeight = 48;
constexpr int kInterleavedDots = 24;

constexpr size_t kDotsPerByte = 8;

// Columns packed at a time: their bytes stay in the first-level cache until they
// are put in their places.
constexpr size_t kStrip = 1024;

constexpr std::array<uint8_t, kStrip> kBlank = [] {
  std::array<uint8_t, kStrip> blank{};
  blank.fill(255);
  return blank;
}();

using DotRows = std::array<const uint8_t*, kDotsPerByte>;

uint8_t dotBit(const uint8_t* row, size_t x, unsigned bit) noexcept {
  return static_cast<uint8_t>(row[x] == 0 ? bit : 0U);
}

/// One byte of each of `count` columns from eight rows. Written so that the compiler
/// makes it a loop of vectors on any processor.
void packByte(const DotRows& rows, size_t count, uint8_t* __restrict bytes) noexcept {
  const auto [a, b, c, d, e, f, g, h] = rows;
  for (size_t x = 0; x < count; ++x) {
    bytes[x] = static_cast<uint8_t>(dotBit(a, x, 0x80) | dotBit(b, x, 0x40) | dotBit(c, x, 0x20) |
                                    dotBit(d, x, 0x10) | dotBit(e, x, 0x08) | dotBit(f, x, 0x04) |
                                    dotBit(g, x, 0x02) | dotBit(h, x, 0x01));
  }
}

void scatter(const uint8_t* bytes, size_t count, size_t bytesPerColumn, uint8_t* columns) noexcept {
  for (size_t x = 0; x < count; ++x) columns[x * bytesPerColumn] = bytes[x];
}

/// Packs the first `dots` dots of each column; `rowOf` names the row of each, null for
/// one without dots.
template <typename RowOf>
void packDots(const RowOf& rowOf, size_t dots, size_t width, size_t bytesPerColumn,
              std::span<uint8_t> columns) noexcept {
  if (columns.size() < width * bytesPerColumn) return;
  std::array<uint8_t, kStrip> bytes;
  for (size_t x = 0; x < width; x += kStrip) {
    const size_t count = std::min(kStrip, width - x);
    for (size_t first = 0; first + kDotsPerByte <= dots; first += kDotsPerByte) {
      DotRows rows;
      for (size_t i = 0; i < kDotsPerByte; ++i) {
        const uint8_t* row = rowOf(first + i);
        rows[i] = row == nullptr ? kBlank.data() : row + x;
      }
      packByte(rows, count, bytes.data());
      scatter(bytes.data(), count, bytesPerColumn,
              columns.data() + x * bytesPerColumn + first / kDotsPerByte);
    }
  }
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

void packRows(std::span<const uint8_t* const> rows, size_t width,
              std::span<uint8_t> columns) noexcept {
  packDots([&](size_t dot) { return rows[dot]; }, rows.size(), width, rows.size() / kDotsPerByte,
           columns);
}

void packColumns(const InkPlane& plane, const ColumnRange& range, const PassRows& rows,
                 uint16_t bytesPerColumn, std::span<uint8_t> columns) noexcept {
  const auto rowOf = [&](size_t dot) {
    const int64_t row = rows.first + int64_t{rows.step} * static_cast<int64_t>(dot);
    return plane.bytes.data() + row * plane.stride + range.first;
  };
  packDots(rowOf, static_cast<size_t>(rows.count), static_cast<size_t>(range.end - range.first),
           bytesPerColumn, columns);
}

BlockExtent trimBlock(std::span<const uint8_t> columns, uint32_t stored, uint32_t areaColumns,
                      uint16_t bytesPerColumn, uint64_t horizontalStep) noexcept {
  const auto data = columns.first(size_t{stored} * bytesPerColumn);
  const size_t blank =
      data.empty() ? 0 : (data.front() != 0 ? 0 : runLength(data.data(), data.size()));
  const bool hasData = blank < data.size();
  const uint64_t blankColumns = hasData ? blank / bytesPerColumn : stored;
  // Deliberate: with more than one byte a column only the first blank column counts
  // as leading.
  const uint64_t leading = bytesPerColumn == 1 ? blankColumns : std::min<uint64_t>(blankColumns, 1);
  const uint64_t skip = leading - leading % std::max<uint64_t>(1, horizontalStep);
  if (!hasData) return {false, static_cast<uint32_t>(skip), 0};
  size_t end = data.size();
  while (data[end - 1] == 0) --end;
  const uint64_t trailing = stored - (end + bytesPerColumn - 1) / bytesPerColumn;
  // Deliberate: every block is one column short.
  const uint64_t sent = uint64_t{areaColumns} - 1 - trailing - skip;
  return {true, static_cast<uint32_t>(skip), static_cast<uint32_t>(sent)};
}

}  // namespace velka
