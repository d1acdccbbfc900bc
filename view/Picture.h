// A picture that is held whole.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "DotGrid.h"

namespace velka::view {

/// 0x00RRGGBB, row after row.
struct Picture {
  int32_t width = 0;
  int32_t height = 0;
  double dpi = 180;
  std::vector<uint32_t> pixels;
};

inline constexpr uint32_t kWhite = 0xFFFFFF;
inline constexpr uint32_t kBlack = 0x000000;
inline constexpr uint32_t kRed = 0xD00000;

/// A picture, or why there is none.
using Drawing = std::variant<Picture, std::string>;

/// The most pixels on a side (what the drawing library can do) and in all of a picture
/// that is held whole.
inline constexpr int32_t kLongestSide = 32767;
inline constexpr int64_t kMostPixels = decode::kMostCells;

/// What is wrong with a picture of that size where these are the limits.
[[nodiscard]] std::string tooLarge(double width, double height, int64_t side, int64_t all);

/// A white picture of that size, which may be beyond the limits.
[[nodiscard]] Drawing blankPicture(double width, double height, double dpi);

}  // namespace velka::view
