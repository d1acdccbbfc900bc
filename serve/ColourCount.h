// The colours of a page, and how much of it each takes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "RasterPixels.h"

namespace velka::serve {

struct CountedColour {
  uint32_t rgb = 0;
  uint64_t pixels = 0;
};

/// All colours but white, the most frequent first.
[[nodiscard]] std::vector<CountedColour> countColours(const RasterPixels& pixels);

/// Colours that look alike, as one: the most frequent of them stands for all.
struct ColourGroup {
  uint32_t rgb = 0;
  uint64_t pixels = 0;
  std::vector<CountedColour> members;
};

inline constexpr size_t kMostGroups = 24;

/// At most `kMostGroups` groups that hold all colours, the largest first. `colours` come
/// with the most frequent first.
[[nodiscard]] std::vector<ColourGroup> groupColours(std::span<const CountedColour> colours);

}  // namespace velka::serve
