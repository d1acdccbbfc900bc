#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

#include "DiffusionWave.h"
#include "Halftone.h"
#include "LiteralImaging.h"

namespace {

using velka::literal::Bytes;

enum class Content { kNoise, kGradient, kRuns, kText };

Bytes makePlane(Content content, size_t rows, size_t stride, unsigned seed) {
  std::mt19937 random(seed);
  Bytes plane(rows * stride);
  uint8_t value = 255;
  for (size_t i = 0; i < plane.size(); ++i) {
    switch (content) {
      case Content::kNoise:
        value = static_cast<uint8_t>(random());
        break;
      case Content::kGradient:
        value = static_cast<uint8_t>((i % stride) * 255 / stride + i / stride);
        break;
      case Content::kRuns:
        value = random() % 20 == 0 ? static_cast<uint8_t>(random()) : value;
        break;
      case Content::kText:
        value = random() % 9 == 0 ? static_cast<uint8_t>(random() % 2 * 255) : value;
        break;
    }
    plane[i] = value;
  }
  return plane;
}

struct Settings {
  int mode;
  int dotFactor;
  int threshold;
};

/// Compares the output, what lies past the width, and the changed input.
void expectLiteral(const Bytes& plane, size_t rows, size_t width, size_t stride, Settings s) {
  Bytes in = plane;
  Bytes out(plane.size(), 9);
  Bytes literalIn = plane;
  Bytes literalOut(plane.size(), 9);
  EXPECT_EQ(velka::dither(s.mode, in.data(), out.data(), static_cast<unsigned>(rows),
                          static_cast<unsigned>(width), static_cast<unsigned>(stride),
                          static_cast<short>(s.dotFactor), static_cast<short>(s.threshold)),
            1);
  velka::literal::dither(s.mode, literalIn, literalOut, rows, width, stride, s.dotFactor,
                         s.threshold);
  const std::string where = std::to_string(width) + "/" + std::to_string(stride) + "x" +
                            std::to_string(rows) + " mode " + std::to_string(s.mode) + " factor " +
                            std::to_string(s.dotFactor) + " threshold " +
                            std::to_string(s.threshold);
  ASSERT_EQ(out, literalOut) << where;
  ASSERT_EQ(in, literalIn) << where;
}

uint8_t single(int mode, uint8_t value, short threshold = 128) {
  uint8_t out = 9;
  velka::dither(mode, &value, &out, 1, 1, 1, 0, threshold);
  return out;
}

TEST(Halftone, FixedThresholdPrintsOneHundredAndNotOneHundredAndOne) {
  EXPECT_EQ(single(1, 100), 0);
  EXPECT_EQ(single(1, 101), 255);
}

TEST(Halftone, ScreensAlwaysPrintFullInkAndNeverPrintPaper) {
  constexpr unsigned kSide = 64;
  constexpr size_t kSize = size_t{kSide} * kSide;
  for (const int mode : {3, 4, 5, 6}) {
    Bytes solid(kSize, 0);
    Bytes paper(kSize, 255);
    Bytes out(kSize, 9);
    velka::dither(mode, solid.data(), out.data(), kSide, kSide, kSide, 0, 0);
    EXPECT_EQ(out, Bytes(kSize, 0));
    velka::dither(mode, paper.data(), out.data(), kSide, kSide, kSide, 0, 0);
    EXPECT_EQ(out, Bytes(kSize, 255));
  }
}

TEST(Halftone, TheColumnSelectsTheScreensRow) {
  // Column 1, row 0 has rank 12 (limit 168); column 0, row 1 has rank 11 (154).
  Bytes in(4, 160);
  Bytes out(4, 9);
  velka::dither(3, in.data(), out.data(), 2, 2, 2, 0, 0);
  EXPECT_EQ(out[1], 0);
  EXPECT_EQ(out[2], 255);
}

TEST(Halftone, ScreensLeaveTheInputAsItWas) {
  const Bytes plane = makePlane(Content::kNoise, 20, 20, 1);
  for (const int mode : {1, 3, 4, 5, 6}) {
    Bytes in = plane;
    Bytes out(plane.size());
    velka::dither(mode, in.data(), out.data(), 20, 20, 20, 0, 128);
    EXPECT_EQ(in, plane);
  }
}

TEST(Halftone, ErrorGoesRightLeftDownDownAndRightDown) {
  Bytes in{255, 100, 10, 20, 30, 40};
  Bytes out(6, 9);
  velka::dither(2, in.data(), out.data(), 2, 3, 3, 0, 128);
  // 100 prints and hands on 43, 18, 31 and 6; 53 prints and hands on 23, 9, 16, 3.
  EXPECT_EQ(in[2], 53);
  EXPECT_EQ(in[3], 38);
  EXPECT_EQ(in[4], 30 + 31 + 9 + 38 * 7 / 16);
  EXPECT_EQ(out, (Bytes{255, 0, 0, 0, 0, 0}));
}

TEST(Halftone, EveryUnknownModeIsErrorDiffusion) {
  const Bytes plane = makePlane(Content::kNoise, 16, 16, 5);
  for (const int mode : {0, 2, 7, -1, std::numeric_limits<int>::max()}) {
    expectLiteral(plane, 16, 16, 16, {mode, 0, 128});
  }
}

TEST(Halftone, EverySizeModeAndContentEqualsTheLiteralMethod) {
  const size_t sizes[][2] = {{1, 1}, {1, 50},  {50, 1},  {2, 2},   {3, 2},
                             {2, 3}, {17, 49}, {33, 96}, {40, 131}};
  unsigned seed = 1;
  for (const auto& [rows, width] : sizes) {
    for (const Content content :
         {Content::kNoise, Content::kGradient, Content::kRuns, Content::kText}) {
      for (int mode = 0; mode <= 7; ++mode) {
        const size_t stride = width + seed % 3;
        expectLiteral(makePlane(content, rows, stride, seed), rows, width, stride, {mode, 0, 128});
        ++seed;
      }
    }
  }
}

TEST(Halftone, EveryThresholdEqualsTheLiteralMethod) {
  const Bytes runs = makePlane(Content::kRuns, 9, 37, 21);
  const Bytes noise = makePlane(Content::kNoise, 9, 37, 22);
  for (int threshold = -1; threshold <= 256; ++threshold) {
    expectLiteral(runs, 9, 37, 37, {2, 0, threshold});
    expectLiteral(noise, 9, 37, 37, {2, 4, threshold});
  }
}

TEST(Halftone, EveryDotFactorEqualsTheLiteralMethod) {
  for (int factor = -10; factor <= 100; ++factor) {
    for (const int threshold : {-1, 0, 60, 128, 254, 255, 256}) {
      expectLiteral(makePlane(Content::kNoise, 7, 23, 31), 7, 23, 23, {2, factor, threshold});
      expectLiteral(makePlane(Content::kText, 7, 43, 32), 7, 43, 43, {2, factor, threshold});
    }
  }
}

TEST(Halftone, ExtremeSettingsEqualTheLiteralMethod) {
  const short least = std::numeric_limits<short>::min();
  const short most = std::numeric_limits<short>::max();
  for (const int factor : {int{least}, int{most}}) {
    for (const int threshold : {int{least}, int{most}, 128}) {
      expectLiteral(makePlane(Content::kNoise, 6, 19, 41), 6, 19, 19, {2, factor, threshold});
    }
  }
}

TEST(Halftone, RandomPlanesEqualTheLiteralMethod) {
  std::mt19937 random(99);
  for (unsigned round = 0; round < 400; ++round) {
    const size_t rows = 1 + random() % 12;
    const size_t width = 1 + random() % 60;
    const size_t stride = width + random() % 5;
    const auto content = static_cast<Content>(random() % 4);
    const Settings settings{static_cast<int>(random() % 8), static_cast<int>(random() % 111) - 10,
                            static_cast<int>(random() % 258) - 1};
    expectLiteral(makePlane(content, rows, stride, round), rows, width, stride, settings);
  }
}

TEST(Halftone, WidthPastTheStrideCountsAsTheStride) {
  for (const int mode : {1, 2, 3, 4, 5, 6}) {
    const Bytes plane = makePlane(Content::kNoise, 5, 12, 51);
    Bytes in = plane;
    Bytes wideIn = plane;
    Bytes out(plane.size());
    Bytes wideOut(plane.size());
    velka::dither(mode, in.data(), out.data(), 5, 12, 12, 0, 128);
    velka::dither(mode, wideIn.data(), wideOut.data(), 5, 4000000000U, 12, 0, 128);
    EXPECT_EQ(wideOut, out);
    EXPECT_EQ(wideIn, in);
  }
}

TEST(Halftone, EmptyAndNullPlanesReturnOneAndDoNothing) {
  Bytes in(4, 7);
  Bytes out(4, 9);
  for (int mode = 0; mode <= 6; ++mode) {
    EXPECT_EQ(velka::dither(mode, in.data(), out.data(), 0, 2, 2, 0, 128), 1);
    EXPECT_EQ(velka::dither(mode, in.data(), out.data(), 2, 0, 2, 0, 128), 1);
    EXPECT_EQ(velka::dither(mode, in.data(), out.data(), 2, 2, 0, 0, 128), 1);
    EXPECT_EQ(velka::dither(mode, nullptr, out.data(), 2, 2, 2, 0, 128), 1);
    EXPECT_EQ(velka::dither(mode, in.data(), nullptr, 2, 2, 2, 0, 128), 1);
  }
  EXPECT_EQ(in, Bytes(4, 7));
  EXPECT_EQ(out, Bytes(4, 9));
}

// The rows left over go to the plain form, which would make all of them as well: only
// the number tells that the wave was there.
TEST(DiffusionWave, MakesAllRowsOfWholeGroupsAndLeavesTheOthers) {
  for (size_t rows = 0; rows < 100; ++rows) {
    Bytes plane(rows * 40 + 1, 200);
    const velka::DiffusionRows all = {plane.data(), plane.data(), rows, 40, 40};
    // The last of a group's sixteen rows is the first of the next group.
    const size_t groups = rows == 0 ? 0 : (rows - 1) / 15;
    EXPECT_EQ(velka::diffuseWave(all, 128), groups * 15) << rows;
  }
}

}  // namespace
