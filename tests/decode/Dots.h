// What lies on decoded pages, as sets that tests compare.
#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "PageReader.h"

namespace velka::decodetest {

/// Down and across, in 1/3600 inch.
using Dot = std::pair<int64_t, int64_t>;
using Dots = std::array<std::set<Dot>, 2>;  ///< black, red

inline Dots dotsOf(const decode::Page& page, decode::Model model) {
  Dots dots;
  for (const decode::Block& block : page.blocks) {
    decode::forEachDot(block, model, [&](decode::Ink ink, int64_t x, int64_t y) {
      dots.at(static_cast<size_t>(ink)).insert({y, x});
    });
  }
  return dots;
}

/// All pages of a stream up to its first fault; the stream must outlive them.
inline std::vector<decode::Page> pagesOf(decode::Bytes stream, decode::Model model) {
  std::vector<decode::Page> pages;
  decode::PageReader reader(stream, model);
  while (auto page = reader.next()) pages.push_back(std::move(*page));
  return pages;
}

}  // namespace velka::decodetest
