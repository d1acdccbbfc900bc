#include "DiffusionWave.h"

#include <cstring>

#include "CpuLevel.h"
#include "WaveGroup.h"

namespace velka {
namespace {

// Steps from a group to the one below it: what that one reads ahead has been written.
constexpr size_t kBehind = 4 * kLanes;
static_assert(kBehind >= kLag + 2 * kLanes);

/// The kernel for pairs of groups, null where there is none.
AdvancePair* pairKernel() noexcept {
#ifdef VELKA_SIMD
  if (cpuLevel() >= CpuLevel::Avx2) return advancePairAvx2;
#endif
  return nullptr;
}

/// Whether a whole group is paper, which stays as it is.
bool isPaper(const DiffusionRows& plane, size_t top) noexcept {
  for (size_t lane = 0; lane < kLanes; ++lane) {
    const uint8_t* row = plane.in + (top + lane) * plane.stride;
    if (row[0] != 255 || std::memcmp(row, row + 1, plane.columns - 1) != 0) return false;
  }
  return true;
}

void passPaper(const DiffusionRows& plane, size_t top) noexcept {
  for (size_t y = top; y < top + kGroupRows; ++y) {
    if (plane.out != plane.in) std::memset(plane.out + y * plane.stride, 255, plane.columns);
  }
}

/// The lower group starts when what it reads first has been received.
void diffuseTwo(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept {
  AdvancePair* const both = pairKernel();
  WaveGroup upper(plane, top, threshold);
  for (size_t step = 0; step < kBehind; step += kLanes) upper.advance();
  WaveGroup lower(plane, top + kGroupRows, threshold);
  while (!lower.isDone()) {
    const size_t blocks = WaveGroup::pairBlocks(upper, lower);
    if (both != nullptr && blocks > 0) {
      WaveGroup::advancePair(*both, upper, lower, blocks);
    } else if (upper.isBusy() && lower.isBusy()) {
      WaveGroup::advanceBoth(upper, lower);
    } else {
      upper.advance();
      lower.advance();
    }
  }
}

void diffuseOne(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept {
  WaveGroup group(plane, top, threshold);
  while (!group.isDone()) group.advance();
}

}  // namespace

size_t diffuseWave(const DiffusionRows& plane, uint8_t threshold) noexcept {
  size_t top = 0;
  while (plane.rows - top >= kLanes) {
    if (isPaper(plane, top)) {
      passPaper(plane, top);
      top += kGroupRows;
    } else if (plane.rows - top >= kLanes + kGroupRows) {
      diffuseTwo(plane, top, threshold);
      top += 2 * kGroupRows;
    } else {
      diffuseOne(plane, top, threshold);
      top += kGroupRows;
    }
  }
  return top;
}

}  // namespace velka
