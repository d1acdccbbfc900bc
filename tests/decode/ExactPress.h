// Streams of the standard head that put every dot on its place, once: what a page looks
// like to the reader where nothing is lost, displaced or struck twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velka::decodetest {

/// Black and red dots, a byte each, row after row.
struct DotPlanes {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> inks[2];

  DotPlanes(int wide, int high) : width(wide), height(high) {
    for (auto& plane : inks) plane.assign(static_cast<size_t>(wide) * static_cast<size_t>(high), 0);
  }
  [[nodiscard]] bool at(int ink, int x, int y) const {
    return inks[ink]
               [static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] != 0;
  }
  void put(int ink, int x, int y) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    inks[ink][static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] = 1;
  }
  [[nodiscard]] bool isBlank(int y) const;
};

struct HeadMode {
  int xdpi;
  int ydpi;
  int code;
  int dots;  ///< of the head: 8 or 24
};

/// A job of one page. Bands start at the first row with ink, the last ones stand
/// higher where the page ends, their rows that are printed already left out.
std::vector<uint8_t> exactJob(const DotPlanes& planes, const HeadMode& mode);

}  // namespace velka::decodetest
