#include "ColourCount.h"

#include <algorithm>
#include <cstdlib>

namespace velka::serve {
namespace {

constexpr uint32_t kPaper = 0xFFFFFF;
// Colours nearer than this in every channel look alike.
constexpr int kAlike = 40;
// Rare colours begin no group: they are the edges between others.
constexpr size_t kMostFounders = 2048;

int channel(uint32_t rgb, unsigned shift) {
  return static_cast<int>((rgb >> shift) & 0xFFU);
}

int distance(uint32_t one, uint32_t other) {
  int most = 0;
  for (const unsigned shift : {16U, 8U, 0U})
    most = std::max(most, std::abs(channel(one, shift) - channel(other, shift)));
  return most;
}

size_t nearest(const std::vector<ColourGroup>& groups, uint32_t rgb) {
  const auto found = std::ranges::min_element(
      groups, {}, [rgb](const ColourGroup& group) { return distance(group.rgb, rgb); });
  return static_cast<size_t>(found - groups.begin());
}

}  // namespace

std::vector<CountedColour> countColours(const RasterPixels& pixels) {
  std::vector<uint32_t> counts(size_t{1} << 24);
  const uint8_t* p = pixels.rgb.data();
  for (size_t i = 0; i < pixels.rgb.size() / 3; ++i, p += 3)
    ++counts[uint32_t{p[0]} << 16U | uint32_t{p[1]} << 8U | p[2]];
  std::vector<CountedColour> colours;
  for (uint32_t rgb = 0; rgb < kPaper; ++rgb)
    if (counts[rgb] > 0) colours.push_back({rgb, counts[rgb]});
  std::ranges::stable_sort(colours, std::greater(), &CountedColour::pixels);
  return colours;
}

std::vector<ColourGroup> groupColours(std::span<const CountedColour> colours) {
  std::vector<ColourGroup> groups;
  for (const CountedColour& colour : colours.first(std::min(colours.size(), kMostFounders))) {
    if (groups.size() == kMostGroups) break;
    const bool alike = std::ranges::any_of(
        groups, [&](const ColourGroup& group) { return distance(group.rgb, colour.rgb) < kAlike; });
    if (!alike) groups.push_back({colour.rgb, 0, {}});
  }
  for (const CountedColour& colour : colours) {
    ColourGroup& group = groups[nearest(groups, colour.rgb)];
    group.pixels += colour.pixels;
    group.members.push_back(colour);
  }
  std::ranges::stable_sort(groups, std::greater(), &ColourGroup::pixels);
  return groups;
}

}  // namespace velka::serve
