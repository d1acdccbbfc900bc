#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <random>

#include "BmpProcessing.h"
#include "LiteralImaging.h"

namespace {

using velka::literal::Bytes;

struct Free {
  void operator()(unsigned char* p) const { std::free(p); }
};

struct Turned {
  bool ok = false;
  std::unique_ptr<unsigned char, Free> data;
  int64_t size = -1;
  int64_t width = -1;
  int64_t height = -1;

  [[nodiscard]] Bytes bytes() const { return {data.get(), data.get() + size}; }
};

Turned turn(Bytes src, int64_t width, int64_t height, int rotation, int bitCount = 24) {
  CBmpProcessing bmp;
  Turned turned;
  unsigned char* dst = nullptr;
  turned.ok = bmp.RotateImg(src.data(), width, height, &dst, &turned.size, &turned.width,
                            &turned.height, bitCount, rotation);
  turned.data.reset(dst);
  return turned;
}

/// 3 x 2 pixels, rows of 12 bytes, paddings 7 that must never be copied.
Bytes threeByTwo() {
  return {1, 1, 1, 2, 2, 2, 3, 3, 3, 7, 7, 7, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 7};
}

Bytes noise(size_t size) {
  std::mt19937 random(11);
  Bytes bytes(size);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(random());
  }
  return bytes;
}

TEST(Rotation, QuarterTurnOfThreeByTwoPadsRowsWithWhite) {
  const Turned turned = turn(threeByTwo(), 3, 2, 1);
  ASSERT_TRUE(turned.ok);
  EXPECT_EQ(turned.width, 2);
  EXPECT_EQ(turned.height, 3);
  const Bytes expected{3, 3, 3,   6,   6, 6, 255, 255, 2, 2, 2,   5,
                       5, 5, 255, 255, 1, 1, 1,   4,   4, 4, 255, 255};
  EXPECT_EQ(turned.bytes(), expected);
}

TEST(Rotation, HalfTurnReversesRowsAndColumns) {
  const Turned turned = turn(threeByTwo(), 3, 2, 2);
  ASSERT_TRUE(turned.ok);
  EXPECT_EQ(turned.width, 3);
  EXPECT_EQ(turned.height, 2);
  const Bytes expected{6, 6, 6, 5, 5, 5, 4, 4, 4, 255, 255, 255,
                       3, 3, 3, 2, 2, 2, 1, 1, 1, 255, 255, 255};
  EXPECT_EQ(turned.bytes(), expected);
}

TEST(Rotation, ClockwiseQuarterTurnStartsWithTheLowerLeftPixel) {
  const Turned turned = turn(threeByTwo(), 3, 2, 3);
  ASSERT_TRUE(turned.ok);
  const Bytes expected{4, 4, 4,   1,   1, 1, 255, 255, 5, 5, 5,   2,
                       2, 2, 255, 255, 6, 6, 6,   3,   3, 3, 255, 255};
  EXPECT_EQ(turned.bytes(), expected);
}

TEST(Rotation, AnyOtherValueCopiesThePixelsAndWhitensThePadding) {
  const Bytes expected{1, 1, 1, 2, 2, 2, 3, 3, 3, 255, 255, 255,
                       4, 4, 4, 5, 5, 5, 6, 6, 6, 255, 255, 255};
  for (const int rotation : {0, 4, -1, 90}) {
    const Turned turned = turn(threeByTwo(), 3, 2, rotation);
    ASSERT_TRUE(turned.ok);
    EXPECT_EQ(turned.bytes(), expected);
  }
}

TEST(Rotation, EverySizeAroundTheBlockEqualsThePixelwiseTurn) {
  for (const int64_t width : {1, 2, 3, 5, 31, 32, 33, 70}) {
    for (const int64_t height : {1, 2, 7, 31, 32, 33, 65}) {
      const auto stride = static_cast<size_t>((width * 24 + 31) / 32 * 4);
      const Bytes src = noise(stride * static_cast<size_t>(height));
      for (int rotation = 0; rotation < 4; ++rotation) {
        const Turned turned = turn(src, width, height, rotation);
        ASSERT_TRUE(turned.ok);
        ASSERT_EQ(turned.bytes(), velka::literal::rotate(src, static_cast<size_t>(width),
                                                         static_cast<size_t>(height), rotation))
            << width << "x" << height << " " << rotation;
      }
    }
  }
}

TEST(Rotation, CallersBufferIsUsedAndMayBeTheSourceItself) {
  Bytes page = threeByTwo();
  unsigned char* dst = page.data();
  int64_t size = 0;
  int64_t width = 0;
  int64_t height = 0;
  CBmpProcessing bmp;
  ASSERT_TRUE(bmp.RotateImg(page.data(), 3, 2, &dst, &size, &width, &height, 24, 2));
  EXPECT_EQ(dst, page.data());
  EXPECT_EQ(size, 24);
  EXPECT_EQ(page, velka::literal::rotate(threeByTwo(), 3, 2, 2));
}

TEST(Rotation, OtherBitCountsAreRefusedAndChangeNothing) {
  const Turned turned = turn(threeByTwo(), 3, 2, 0, 8);
  EXPECT_FALSE(turned.ok);
  EXPECT_EQ(turned.data, nullptr);
  EXPECT_EQ(turned.size, -1);
  EXPECT_EQ(turned.width, -1);
  EXPECT_EQ(turned.height, -1);
}

TEST(Rotation, SizesThatAreNotPositiveOrTooLargeAreRefused) {
  const int64_t most = std::numeric_limits<int64_t>::max();
  const int64_t sizes[][2] = {{0, 2},
                              {3, 0},
                              {-1, 2},
                              {3, -2},
                              {most, 1},
                              {1, most},
                              {most / 24, 1000},
                              {most / 24, most},
                              {1LL << 31, 1LL << 31}};
  for (const auto& [width, height] : sizes) {
    for (int rotation = 0; rotation < 4; ++rotation) {
      const Turned turned = turn(threeByTwo(), width, height, rotation);
      EXPECT_FALSE(turned.ok) << width << "x" << height;
      EXPECT_EQ(turned.data, nullptr);
      EXPECT_EQ(turned.size, -1);
    }
  }
}

TEST(Rotation, NullPointersAreRefused) {
  CBmpProcessing bmp;
  Bytes src = threeByTwo();
  unsigned char* dst = nullptr;
  int64_t size = 0;
  int64_t w = 0;
  int64_t h = 0;
  EXPECT_FALSE(bmp.RotateImg(nullptr, 3, 2, &dst, &size, &w, &h, 24, 0));
  EXPECT_FALSE(bmp.RotateImg(src.data(), 3, 2, nullptr, &size, &w, &h, 24, 0));
  EXPECT_FALSE(bmp.RotateImg(src.data(), 3, 2, &dst, nullptr, &w, &h, 24, 0));
  EXPECT_FALSE(bmp.RotateImg(src.data(), 3, 2, &dst, &size, nullptr, &h, 24, 0));
  EXPECT_FALSE(bmp.RotateImg(src.data(), 3, 2, &dst, &size, &w, nullptr, 24, 0));
  EXPECT_EQ(dst, nullptr);
}

}  // namespace
