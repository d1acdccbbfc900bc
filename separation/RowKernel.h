// Separation of many pixels at a time.
//
// A row is taken sixteen pixels at a step and up to sixteen steps at a time, in three
// rounds: the pixels of all steps are sorted by ink, then graded, then put into the
// planes. No round asks what a single pixel is, for on a photograph the processor would
// guess the answer wrongly too often, and each is one short loop, so that the look-ups
// of many pixels are on their way at once.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velka {

inline constexpr size_t kRgbBytes = 3;

enum class Ink : uint8_t { None, Black, Red };

/// What was found in a row.
struct RowInk {
  bool black = false;
  int64_t firstRedColumn = -1;  ///< -1: no red in the row
  int64_t lastRedColumn = -1;
  int64_t firstBlackColumn = -1;  ///< -1: no black in the row
  int64_t lastBlackColumn = -1;
};

/// The rules of a page as plain data.
struct RowRules {
  uint8_t low[3];  ///< of the range, in memory order; above `high` where none is inside
  uint8_t high[3];
  uint8_t solid[3];
  bool solidApplies;
  Ink route[4];                      ///< indexed by in range (1) + near grey (2)
  uint8_t black[3];                  ///< the value of pure black; indexed by ink
  const uint32_t* contributions[3];  ///< of a pixel's bytes in memory order: 256 for black
                                     ///< ink, then 256 for red
  const uint32_t* graySteps;         ///< as GrayScale holds them
};

/// Steps of a row on their way from pixels to plane values.
struct RowSteps {
  static constexpr size_t kPixels = 16;  ///< of a step
  static constexpr size_t kMost = 16;

  size_t count;                        ///< of the steps that have any ink
  size_t columns[kMost];               ///< where they start
  uint16_t tones[3][kMost * kPixels];  ///< where a pixel's bytes stand in the contributions
  uint8_t inks[kMost * kPixels];       ///< as in Ink
  uint8_t settled[kMost * kPixels];    ///< 255 where the value needs no grey, else 0
  uint8_t values[kMost * kPixels];     ///< those values, else 0
  uint8_t greys[kMost * kPixels];
};

/// Sorts `count` steps of pixels from column `x` on, at most RowSteps::kMost, into
/// `steps`, which it fills anew; all but the greys.
using SortPixels = void(const RowRules& rules, const uint8_t* pixels, size_t x, size_t count,
                        RowSteps& steps) noexcept;
SortPixels sortPixels;
SortPixels sortPixelsSsse3;

/// Separates pixels from the start of a row, as many of `count` as make whole steps,
/// as InkRules::dot would, and adds to what was found. Returns their number.
size_t separatePixels(SortPixels& sort, const RowRules& rules, const uint8_t* pixels, size_t count,
                      uint8_t* black, uint8_t* red, RowInk& found) noexcept;

}  // namespace velka
