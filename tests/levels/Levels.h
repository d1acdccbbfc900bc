// Running a kernel at every level of this processor.
//
// Every form of every kernel gives the same bytes: all levels are compared with the
// plain form, which other tests compare with the literal methods.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CpuLevel.h"
#include "support/Capture.h"
#include "support/Sweep.h"

namespace velka::testing {

inline constexpr unsigned kRounds = testing::amount(4000U, 500U, 100U);
inline constexpr uint32_t kColourStep = testing::amount(1U, 251U, 2503U);

/// Runs at a level and goes back to the highest.
class AtLevel {
 public:
  explicit AtLevel(CpuLevel level) { forceCpuLevel(level); }
  ~AtLevel() { forceCpuLevel(highestCpuLevel()); }
  AtLevel(const AtLevel&) = delete;
  AtLevel& operator=(const AtLevel&) = delete;
};

/// Every level above the plain one that this processor has.
inline std::vector<CpuLevel> fasterLevels() {
  std::vector<CpuLevel> levels;
  for (int level = 1; level <= static_cast<int>(highestCpuLevel()); ++level)
    levels.push_back(static_cast<CpuLevel>(level));
  return levels;
}

/// Expects `run` to return the same at every level.
template <typename Run>
void expectSame(const Run& run, const std::string& what) {
  const auto at = [&](CpuLevel level) {
    const AtLevel forced(level);
    return run();
  };
  const auto plain = at(CpuLevel::Plain);
  for (const CpuLevel level : fasterLevels())
    ASSERT_EQ(at(level), plain) << what << " level " << static_cast<int>(level);
}

inline unsigned below(std::mt19937& random, unsigned end) {
  return static_cast<unsigned>(random() % end);
}

/// What a camera makes of `value`: noise in every pixel, seldom far from it, and the ends
/// of the scale where it is over- or underexposed.
inline uint8_t asPhotographed(std::mt19937& random, int value, int noise) {
  int sum = value;
  for (int i = 0; i < 4; ++i) sum += static_cast<int>(random() % static_cast<unsigned>(noise + 1));
  return static_cast<uint8_t>(std::clamp(sum - 2 * noise, 0, 255));
}

/// Noise, a gradient, runs, text, nearly nothing or a photograph.
inline Bytes content(std::mt19937& random, size_t size, size_t stride) {
  const unsigned kind = below(random, 7);
  Bytes bytes(size);
  uint8_t value = 255;
  for (size_t i = 0; i < size; ++i) {
    const auto any = static_cast<uint8_t>(random());
    const bool seldom = below(random, 40) == 0;
    if (kind == 0) value = any;
    if (kind == 1) value = static_cast<uint8_t>(i % stride * 255 / stride + i / stride);
    if (kind == 2 && seldom) value = any;
    if (kind == 3 && below(random, 9) == 0) value = any < 128 ? 0 : 255;
    if (kind == 4 && seldom) value = any < 60 ? any : (any < 128 ? 0 : 255);
    if (kind == 5) value = seldom && below(random, 8) == 0 ? any : 255;
    if (kind == 6) {
      const size_t light = 300 * (i % stride) / stride + i / stride / 2;
      value = asPhotographed(random, static_cast<int>(light % 300) - 20, 12);
    }
    bytes[i] = value;
  }
  return bytes;
}

}  // namespace velka::testing
