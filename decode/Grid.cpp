#include "Grid.h"

#include <algorithm>
#include <numeric>

namespace velka::decode {
namespace {

constexpr int64_t kFinest = kUnitsPerInch / 720;
constexpr int64_t kUsual = kUnitsPerInch / 360;
constexpr int64_t kUnknown = kUnitsPerInch / 180;

// Units from a row of dots to the next. A pass that struck nothing still tells of its
// rows by the way to them.
int64_t rowPitch(const Page& page) {
  int64_t pitch = page.paperStep;
  for (const Block& block : page.blocks) {
    pitch = std::gcd(std::gcd(pitch, block.mode.dotPitch), block.y);
  }
  return pitch;
}

}  // namespace

void Grid::add(const Page& page) {
  for (const Block& block : page.blocks) {
    step = std::gcd(std::gcd(step, block.mode.columnPitch), block.x);
    step = std::gcd(std::gcd(step, block.mode.dotPitch), block.y);
  }
}

int64_t Grid::cell() const {
  if (step == 0) return kUnknown;
  return step < kFinest ? kUsual : step;
}

int64_t dotHeight(const Page& page, const Grid& grid) {
  return std::max<int64_t>(1, rowPitch(page) / grid.cell());
}

int64_t dotWidth(const Block& block, const Grid& grid) {
  return std::max<int64_t>(1, block.mode.columnPitch / grid.cell());
}

int64_t cellsIn(const Grid& grid, int64_t units) {
  return (std::max<int64_t>(0, units) + grid.cell() - 1) / grid.cell();
}

}  // namespace velka::decode
