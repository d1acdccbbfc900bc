// Packing the dots of one band of an ink plane into bit-image columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "BitmapRecords.h"

namespace velka {

/// A halftoned ink plane: rows of `stride` bytes, 0 = dot, anything else = none.
struct InkPlane {
  std::span<const uint8_t> bytes;
  int32_t stride = 0;
  int32_t height = 0;
};

/// The dot rows that one head pass takes from a band.
struct PassRows {
  int64_t first;  ///< row of dot 0
  int step;       ///< rows from one dot to the next
  int count;      ///< dots a column
};

/// The rows of pass `pass` (0 or 1) over `area` for columns of `bytesPerColumn`
/// bytes. A band of 48 rows is interleaved: each pass takes every second row.
[[nodiscard]] PassRows passRows(const _RECTL& area, uint16_t bytesPerColumn, int pass) noexcept;

/// Columns of `area`; 0 for an inverted rectangle.
[[nodiscard]] uint32_t columnCount(const _RECTL& area) noexcept;

/// The columns of a band whose dots all lie inside the plane.
struct ColumnRange {
  int64_t first;
  int64_t end;  ///< one past the last; equal to first when there are none
};
[[nodiscard]] ColumnRange completeColumns(const InkPlane& plane, const _RECTL& area,
                                          const PassRows& rows) noexcept;

/// Packs `width` columns from eight rows of bytes (0 = dot) for each byte of a column,
/// the topmost dot in the most significant bit. A null row holds no dot.
/// @param columns width x rows.size() / 8 bytes
void packRows(std::span<const uint8_t* const> rows, size_t width,
              std::span<uint8_t> columns) noexcept;

/// Packs the complete columns, one after the other from the start of `columns`:
/// `bytesPerColumn` bytes each, the topmost dot in the most significant bit. A
/// column that is not complete is not stored and takes no place.
/// @param columns zeroed, columnCount(area) x bytesPerColumn bytes
void packColumns(const InkPlane& plane, const ColumnRange& range, const PassRows& rows,
                 uint16_t bytesPerColumn, std::span<uint8_t> columns) noexcept;

/// What of a packed band is sent.
struct BlockExtent {
  bool hasData;          ///< any dot at all
  uint32_t leadingSkip;  ///< columns left out before the first one sent
  uint32_t columns;      ///< columns sent
};

/// Trims the blank columns of a packed band.
/// @param stored         columns that packColumns stored
/// @param areaColumns    columns of the band
/// @param horizontalStep columns in 1/60 inch, at least 1
[[nodiscard]] BlockExtent trimBlock(std::span<const uint8_t> columns, uint32_t stored,
                                    uint32_t areaColumns, uint16_t bytesPerColumn,
                                    uint64_t horizontalStep) noexcept;

}  // namespace velka
