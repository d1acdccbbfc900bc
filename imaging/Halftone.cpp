#include "Halftone.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "CpuLevel.h"
#include "DiffusionWave.h"
#include "ErrorDiffusion.h"
#include "HalftoneScreens.h"

namespace velka {
namespace {

using Plane = DiffusionRows;

// Every screen's side divides 48, so one period fits all of them.
constexpr size_t kPeriod = 48;

/// What a value must reach to stay blank, for 48 columns of one row.
using BlankLimits = uint8_t[kPeriod];

// Through a buffer of its own, so that `in` may be `out`.
void applyPeriod(const uint8_t* in, uint8_t* out, const BlankLimits& limits) {
  uint8_t dots[kPeriod];
  for (size_t i = 0; i < kPeriod; ++i) {
    dots[i] = in[i] >= limits[i] ? 255 : 0;
  }
  std::memcpy(out, dots, kPeriod);
}

void applyLimits(const uint8_t* in, uint8_t* out, size_t columns, const BlankLimits& limits) {
  size_t x = 0;
  for (; columns - x >= kPeriod; x += kPeriod) {
    applyPeriod(in + x, out + x, limits);
  }
  for (size_t i = 0; x + i < columns; ++i) {
    out[x + i] = in[x + i] >= limits[i] ? 255 : 0;
  }
}

void fixedThreshold(const Plane& plane) {
  BlankLimits limits;
  std::fill(std::begin(limits), std::end(limits), uint8_t{101});
  for (size_t y = 0; y < plane.rows; ++y) {
    applyLimits(plane.in + y * plane.stride, plane.out + y * plane.stride, plane.columns, limits);
  }
}

template <size_t N>
void screen(const Plane& plane, const Screen<N>& pattern) {
  static_assert(kPeriod % N == 0);
  for (size_t y = 0; y < plane.rows; ++y) {
    BlankLimits limits;
    for (size_t x = 0; x < kPeriod; ++x) {
      // Full ink prints even where the threshold is 0, hence at least 1.
      const unsigned limit = std::max(pattern.rank[x % N][y % N] * pattern.scale, 1U);
      limits[x] = static_cast<uint8_t>(limit);
    }
    applyLimits(plane.in + y * plane.stride, plane.out + y * plane.stride, plane.columns, limits);
  }
}

void diffuse(const Plane& plane, short dotFactor, short threshold) {
  size_t y = 0;
  if (waveServes(dotFactor, threshold) && cpuLevel() >= CpuLevel::Vectors) {
    y = diffuseWave(plane, static_cast<uint8_t>(threshold));
  }
  const DiffusionTable table(dotFactor, threshold);
  for (; y < plane.rows; ++y) {
    uint8_t* row = plane.in + y * plane.stride;
    uint8_t* below = y + 1 < plane.rows ? row + plane.stride : nullptr;
    diffuseRow(table, row, below, plane.out + y * plane.stride, plane.columns);
  }
}

}  // namespace

int dither(int mode, unsigned char* in, unsigned char* out, unsigned rows, unsigned width,
           unsigned stride, short dotFactor, short threshold) {
  // Past the stride lie the next row's pixels, and past the last row nobody's.
  const Plane plane{in, out, rows, std::min(width, stride), stride};
  if (in == nullptr || out == nullptr || plane.columns == 0) {
    return 1;
  }
  switch (mode) {
    case 1:
      fixedThreshold(plane);
      break;
    case 3:
      screen(plane, kScreen6);
      break;
    case 4:
      screen(plane, kScreen8);
      break;
    case 5:
      screen(plane, kScreen12);
      break;
    case 6:
      screen(plane, kScreen16);
      break;
    default:
      diffuse(plane, dotFactor, threshold);
  }
  return 1;
}

}  // namespace velka
