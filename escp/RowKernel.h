// Separation of many pixels at a time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velka {

enum class Ink : uint8_t { None, Black, Red };

/// What was found in a row.
struct RowInk {
  bool black = false;
  int64_t firstRedColumn = -1;  ///< -1: no red in the row
  int64_t lastRedColumn = -1;
  int64_t firstBlackColumn = -1;  ///< -1: no black in the row
  int64_t lastBlackColumn = -1;
};

/// Tone of an ink as ToneTable holds it.
struct RowTone {
  const uint32_t* contributions[3];  ///< for a pixel's bytes in memory order
  uint8_t black;                     ///< the value of pure black
};

/// The rules of a page as plain data.
struct RowRules {
  uint8_t low[3];  ///< of the range, in memory order; above `high` where none is inside
  uint8_t high[3];
  uint8_t solid[3];
  bool solidApplies;
  Ink route[4];               ///< indexed by in range (1) + near grey (2)
  RowTone tones[3];           ///< indexed by ink; that of Ink::None is as good as any
  const uint32_t* graySteps;  ///< as GrayScale holds them
};

/// Separates pixels from the start of a row, as many of `count` as make whole steps,
/// as InkRules::dot would, and adds to what was found. Returns their number.
size_t separatePixels(const RowRules& rules, const uint8_t* pixels, size_t count, uint8_t* black,
                      uint8_t* red, RowInk& found) noexcept;
size_t separatePixelsSsse3(const RowRules& rules, const uint8_t* pixels, size_t count,
                           uint8_t* black, uint8_t* red, RowInk& found) noexcept;

}  // namespace velka
