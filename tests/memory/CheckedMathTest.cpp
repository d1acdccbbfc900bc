#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

#include "CheckedMath.h"

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace {

using velka::truncateToInt32;

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();

TEST(Truncation, IsTowardsZero) {
  EXPECT_EQ(truncateToInt32(2.99), 2);
  EXPECT_EQ(truncateToInt32(-2.99), -2);
  EXPECT_EQ(truncateToInt32(-0.5), 0);
}

TEST(Truncation, EveryIntegerAndItsFractionFits) {
  EXPECT_EQ(truncateToInt32(2147483647.0), kHighest);
  EXPECT_EQ(truncateToInt32(2147483647.9), kHighest);
  EXPECT_EQ(truncateToInt32(-2147483647.5), -kHighest);
  EXPECT_EQ(truncateToInt32(-2147483648.9), kLowest);
}

TEST(Truncation, WhatFitsNoIntegerIsTheLowestOne) {
  using Limits = std::numeric_limits<double>;
  for (const double value :
       {2147483648.0, -2147483649.0, 4294967296.0, 1e300, -1e300, Limits::max(), Limits::lowest(),
        Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
    EXPECT_EQ(truncateToInt32(value), kLowest) << value;
}

#if defined(__x86_64__)
TEST(Truncation, IsWhatTheProcessorsOwnInstructionGives) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 1000000; ++round) {
    // Any bit pattern, and values around the ends of the range.
    const uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (round % 2 == 0) value = static_cast<double>(static_cast<int64_t>(bits) >> 31U) + 0.25;
    ASSERT_EQ(truncateToInt32(value), _mm_cvttsd_si32(_mm_set_sd(value))) << value;
  }
}
#endif

TEST(WrappingSums, GoRoundAsTheProcessorsDo) {
  EXPECT_EQ(velka::wrappingAdd(3, -5), -2);
  EXPECT_EQ(velka::wrappingAdd(kHighest, 1), kLowest);
  EXPECT_EQ(velka::wrappingAdd(kLowest, -1), kHighest);
  EXPECT_EQ(velka::wrappingAdd(kLowest, kLowest), 0);
  EXPECT_EQ(velka::wrappingNegate(7), -7);
  EXPECT_EQ(velka::wrappingNegate(kLowest), kLowest);
}

}  // namespace
